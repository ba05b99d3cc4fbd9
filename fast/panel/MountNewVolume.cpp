#include <fast/panel/MountNewVolume.h>

#include <fast/client/Fast.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VirtualDrive.h>
#include <fast/panel/BackgroundWork_p.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/FileMove_p.h>
#include <fast/panel/PanelMessages_p.h>

#include <korvane/IconXPMHandler.h>
#include <korvane/MDEventBus.h>
#include <kvWidgets/DoubleSlider.h>
#include <kvWidgets/HelpToolTip.h>
#include <osdu/HttpResponse.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPalette>
#include <QPushButton>
#include <QSpinBox>

#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace fast {

namespace {

constexpr int kWholeAxisMaximum = 1000000;
// How long the link may take to appear, or stay held by another program.
constexpr std::chrono::milliseconds kRenamePatience{10000};

const char* const kRedLabel = "QLabel { color : red; }";
const char* const kInvalidNameHelp = QT_TRANSLATE_NOOP(
    "fast::MountNewVolume",
    "A file name cannot be blank, contain / \\ : * ? \" < > | or a control character, end in a dot or a "
    "blank, or be a device name (CON, PRN, AUX, NUL, CONIN$, CONOUT$, COM1 to COM9, LPT1 to LPT9, COM¹ to "
    "COM³, LPT¹ to LPT³), with or without an extension.");

int toInt(const std::string& text)
{
    return std::stoi(text, nullptr, 10);
}

// FAST writes numbers with a dot whatever the host's locale: std::stod, which follows the C
// locale, would read "1.5" as 1 in a German one.
double toDouble(const std::string& text)
{
    const char* first = text.data();
    const char* const last = first + text.size();
    while (first != last && std::isspace(static_cast<unsigned char>(*first)))
        ++first;
    double value = 0;
    const std::errc error = std::from_chars(first, last, value).ec;
    if (error == std::errc::invalid_argument)
        throw std::invalid_argument("invalid stod argument");
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range("stod argument out of range");
    return value;
}

// A depth bound is fractional; converting one outside int would be undefined, so it is refused
// as std::stod refuses what a double cannot hold.
int toWholeDepth(double value)
{
    if (!(value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()))
        throw std::out_of_range("stod argument out of range");
    return static_cast<int>(value);
}

} // namespace

MountNewVolume::MountNewVolume(const std::shared_ptr<Fast>& fast, const std::string& vdsId, const SubvolumeRange& range,
                               const QString& projectPath, QWidget* parent)
    : QDialog(parent), m_fast(fast), m_vdsId(vdsId), m_projectPath(projectPath)
{
    setWindowTitle(tr("Mount a VDS with Bluware FAST™"));
    setWindowIcon(QIcon(QStringLiteral(":/light/bluware24.png")));

    const QPixmap helpIcon = *iconHandler->getPixmap(QStringLiteral("help24"));
    auto* grid = new QGridLayout(this);

    m_fileNameLabel = new QLabel(tr("Filename"), this);
    m_fileNameLabel->setObjectName(kMountFileNameLabel);
    grid->addWidget(m_fileNameLabel, 0, 0, Qt::AlignLeft);
    grid->addWidget(new kvWidgets::HelpToolTip(
                        helpIcon,
                        tr("The filename corresponds to the mounted volume. This name will be displayed in the "
                           "Project Browser of the current project as well as in the FAST™ local virtual drive."),
                        this),
                    0, 1, Qt::AlignRight);
    m_fileNameEdit = new QLineEdit(this);
    m_fileNameEdit->setObjectName(kMountFileNameField);
    grid->addWidget(m_fileNameEdit, 1, 0, 1, 2);

    grid->addWidget(new QLabel(tr("Zone of Interest"), this), 2, 0, Qt::AlignLeft);
    grid->addWidget(new kvWidgets::HelpToolTip(helpIcon,
                                               tr("Leave the fields below unchanged to mount the whole volume."), this),
                    2, 1, Qt::AlignRight);

    m_inline = addAxisRow(tr("In-line"), 3);
    m_crossline = addAxisRow(tr("X-line"), 6);
    m_z = addAxisRow(tr("Z"), 9);

    m_cancelButton = new QPushButton(tr("Cancel"), this);
    m_saveButton = new QPushButton(tr("Save"), this);
    m_cancelButton->setObjectName(kMountCancelButton);
    m_saveButton->setObjectName(kMountSaveButton);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_saveButton);
    // Qt would make the first button the default, and Enter after typing a name would drop the
    // mount (and a first mount's registration with it).
    m_cancelButton->setAutoDefault(false);
    m_saveButton->setDefault(true);
    grid->addLayout(buttons, 14, 1, Qt::AlignRight);

    connect(m_fileNameEdit, &QLineEdit::textEdited, this, &MountNewVolume::onFileNameEdited);
    connect(m_saveButton, &QPushButton::clicked, this, &MountNewVolume::onSave);
    connect(m_cancelButton, &QPushButton::clicked, this, &MountNewVolume::reject);

    applyRange(range);
    m_fileNameEdit->setFocus();
}

MountNewVolume::~MountNewVolume()
{
    // Nobody is left to report the rename to; a host may be waiting to free the library.
    m_gone->store(true);
}

void MountNewVolume::reject()
{
    if (!m_mounting)
        QDialog::reject();
}

MountNewVolume::AxisRow MountNewVolume::addAxisRow(const QString& title, int firstRow)
{
    auto* grid = static_cast<QGridLayout*>(layout());
    AxisRow row;
    row.slider = new kvWidgets::DoubleSlider(this);
    row.slider->setSingleStep(1);
    row.slider->setMinimum(0);
    row.slider->setMaximum(kWholeAxisMaximum);
    row.slider->setLowerValue(0);
    row.slider->setUpperValue(kWholeAxisMaximum);
    row.lower = new QSpinBox(this);
    row.upper = new QSpinBox(this);
    for (QSpinBox* spin : {row.lower, row.upper}) {
        spin->setFixedHeight(20);
        spin->setRange(0, kWholeAxisMaximum);
        // A number is taken once it is typed in full: a half-typed one would move the handle,
        // be clamped by the other handle and come back into the box under the cursor.
        spin->setKeyboardTracking(false);
    }
    row.lower->setValue(0);
    row.upper->setValue(kWholeAxisMaximum);

    grid->addWidget(new QLabel(title, this), firstRow, 0, 1, 2, Qt::AlignLeft);
    grid->addWidget(row.lower, firstRow + 1, 0, Qt::AlignLeft);
    grid->addWidget(row.upper, firstRow + 1, 1, Qt::AlignRight);
    grid->addWidget(row.slider, firstRow + 2, 0, 1, 2);

    // Each side settles the other without echo: neither widget signals a value it already holds.
    connect(row.slider, &kvWidgets::DoubleSlider::lowerValueChanged, row.lower, &QSpinBox::setValue);
    connect(row.slider, &kvWidgets::DoubleSlider::upperValueChanged, row.upper, &QSpinBox::setValue);
    connect(row.lower, qOverload<int>(&QSpinBox::valueChanged), row.slider, &kvWidgets::DoubleSlider::setLowerValue);
    connect(row.upper, qOverload<int>(&QSpinBox::valueChanged), row.slider, &kvWidgets::DoubleSlider::setUpperValue);
    return row;
}

void MountNewVolume::applyRange(const SubvolumeRange& range)
{
    // The boxes' ranges first: a box clamps a value outside its range as it takes it.
    const auto setMinimum = [](const AxisRow& row, int minimum) {
        row.lower->setMinimum(minimum);
        row.upper->setMinimum(minimum);
        row.slider->setMinimum(minimum);
        row.slider->setLowerValue(minimum);
    };
    const auto setMaximum = [](const AxisRow& row, int maximum) {
        row.lower->setMaximum(maximum);
        row.upper->setMaximum(maximum);
        row.slider->setMaximum(maximum);
        row.slider->setUpperValue(maximum);
    };

    if (!range.dim0Min.empty())
        setMinimum(m_inline, toInt(range.dim0Min));
    if (!range.dim0Max.empty())
        setMaximum(m_inline, toInt(range.dim0Max));
    if (!range.dim1Min.empty())
        setMinimum(m_crossline, toInt(range.dim1Min));
    if (!range.dim1Max.empty())
        setMaximum(m_crossline, toInt(range.dim1Max));
    // Only whole samples inside the volume can be mounted.
    if (!range.dim2Min.empty())
        setMinimum(m_z, toWholeDepth(std::ceil(toDouble(range.dim2Min))));
    if (!range.dim2Max.empty())
        setMaximum(m_z, toWholeDepth(std::floor(toDouble(range.dim2Max))));
}

void MountNewVolume::onFileNameEdited()
{
    m_fileNameLabel->setText(tr("Filename"));
    m_fileNameLabel->setToolTip(QString());
    m_fileNameLabel->setStyleSheet(
        QStringLiteral("QLabel { color : %1; }").arg(QApplication::palette().color(QPalette::Text).name()));
}

void MountNewVolume::onSave()
{
    // A number still being typed counts as typed: Save may come by Enter or without focus moving.
    for (const AxisRow* row : {&m_inline, &m_crossline, &m_z}) {
        row->lower->interpretText();
        row->upper->interpretText();
    }
    const QString name = m_fileNameEdit->text();
    if (!acceptsFileName(name))
        return;

    const QFileInfo link(m_projectPath + QDir::separator() + name + QStringLiteral(".kv"));
    const MountAnswer answer = requestMount(name);
    if (answer.status != 200 || answer.fileId.empty()) {
        showMountError(link.completeBaseName(), answer.status, answer.body);
        MDEventBus::sendMessage(MDEventBus::Error,
                                tr("Bluware FAST™ error : impossible to mount vds file : %1 : %2")
                                    .arg(QString::number(answer.status), answer.body),
                                false);
        done(0);
        return;
    }

    m_mounting = true;
    m_saveButton->setEnabled(false);
    m_cancelButton->setEnabled(false);
    renameLinkOnceWritten(link, answer.fileId);
}

bool MountNewVolume::acceptsFileName(const QString& name)
{
    const auto refuse = [this](const QString& label, const QString& toolTip) {
        m_fileNameLabel->setText(label);
        m_fileNameLabel->setStyleSheet(kRedLabel);
        m_fileNameLabel->setToolTip(toolTip);
        return false;
    };
    if (name.isEmpty())
        return refuse(tr("Filename"), QString());
    // FAST's drive is a Windows drive: a name it cannot hold would only fail there.
    if (!driveCanHoldFileName(name))
        return refuse(tr("Invalid filename"), tr(kInvalidNameHelp));
    // FAST would refuse a name its drive already holds; asking first keeps the user here to
    // choose another.
    if (fileExistsInVirtualDrive(name))
        return refuse(tr("File already exists"), QString());
    return true;
}

MountNewVolume::MountAnswer MountNewVolume::requestMount(const QString& name) const
{
    // FAST takes the Z pair first and the In-line pair last, the reverse of the description
    // that set the rows' defaults; mounts made so far depend on this order, so it stays.
    MountAnswer answer;
    try {
        const auto response = m_fast->mountFile(m_vdsId, name.toUtf8().toStdString(),
                                                m_projectPath.toUtf8().toStdString(), m_z.slider->lowerValue(),
                                                m_z.slider->upperValue(), m_crossline.slider->lowerValue(),
                                                m_crossline.slider->upperValue(), m_inline.slider->lowerValue(),
                                                m_inline.slider->upperValue());
        answer.status = response->getResponse();
        answer.fileId = response->getMessage();
        answer.body = QString::fromStdString(answer.fileId);
    } catch (const std::exception& failure) {
        // No answer to show: the request never made it, as when FAST cannot be reached.
        answer.body = exceptionText(failure);
    }
    // An answer that names no file id, or none that arrived, may still have mounted the file:
    // FAST's listing says which, so that the page never keeps an id FAST does not know and no
    // file stays mounted that the page does not know of.
    if ((answer.status == 200 && !isFastId(answer.fileId)) || answer.status == 0) {
        answer.fileId = mountedFileId(name.toUtf8().toStdString());
        if (!answer.fileId.empty())
            answer.status = 200;
    }
    return answer;
}

void MountNewVolume::renameLinkOnceWritten(const QFileInfo& link, const std::string& fileId)
{
    // FAST writes the link a while after answering, so the rename waits for it off this thread.
    const QString source = link.absoluteFilePath();
    const QString target = link.absolutePath() + QDir::separator() + link.completeBaseName();
    const auto renamed = std::make_shared<bool>(false);
    const auto renaming = [source, target, renamed, gone = m_gone] {
        try {
            *renamed = moveFileWhenFree(source, target, kRenamePatience, moveFileOnce, [gone] { return gone->load(); });
        } catch (...) {
            // Left unrenamed: the dialog undoes the mount and says so.
        }
    };
    const QString fileName = link.completeBaseName();
    startInBackground(renaming, this,
                      [this, renamed, fileId, fileName] { onRenameFinished(*renamed, fileId, fileName); });
}

std::string MountNewVolume::mountedFileId(const std::string& name) const
{
    std::string fileId;
    quietly([&] {
        const auto files = m_fast->getFileList();
        const auto volumes = m_fast->getVdsList();
        for (const VdsInfo& info : parseVdsInfos(volumes->getMessage(), files->getMessage())) {
            if (info.vdsId != m_vdsId)
                continue;
            for (const VdsFile& file : info.files) {
                if (samePath(QString::fromStdString(file.fileName), QString::fromStdString(name)))
                    fileId = file.fileId;
            }
        }
    });
    return fileId;
}

void MountNewVolume::onRenameFinished(bool renamed, const std::string& fileId, const QString& fileName)
{
    m_mounting = false;
    if (renamed) {
        Q_EMIT vdsMounted(m_vdsId, fileId, fileName.toUtf8().toStdString());
        done(1);
        return;
    }
    // Without its link the host cannot open the file, so FAST should not keep it either.
    quietly([&] { m_fast->deleteFile(fileId); });
    showMountError(fileName, 200, QString::fromStdString(fileId));
    MDEventBus::sendMessage(MDEventBus::Error,
                            tr("Bluware FAST™ error : impossible to rename remote file %1.kv").arg(fileName), false);
    done(0);
}

void MountNewVolume::showMountError(const QString& fileName, int status, const QString& body)
{
    QMessageBox::warning(this, tr("Bluware FAST™ mount error"),
                         tr("Impossible to mount VDS file : %1\nRequest response :\n %2 : %3")
                             .arg(fileName, QString::number(status), body));
}

} // namespace fast
