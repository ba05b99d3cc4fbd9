#include "SettingsDialog.h"

#include <fast/client/Fast.h>

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// A key of the library's group "FAST".
QString fastKey(const std::string& name)
{
    return QString::fromStdString(fast::FAST_GROUP + '/' + name);
}

// The library's own defaults, shown when the store holds no value yet.
const char* const kDefaultHost = "localhost";
const char* const kDefaultPort = "27182";
const char* const kDefaultMountPoint = "K:";

} // namespace

SettingsDialog::SettingsDialog(QWidget* parent)
    : QDialog(parent), m_host(new QLineEdit(this)), m_port(new QLineEdit(this)), m_mountPoint(new QLineEdit(this))
{
    setWindowTitle(tr("FAST settings"));
    setMinimumWidth(520);

    const QSettings settings;
    m_host->setText(settings.value(fastKey(fast::FAST_HOST), kDefaultHost).toString());
    m_host->setPlaceholderText(kDefaultHost);
    m_port->setText(settings.value(fastKey(fast::FAST_PORT), kDefaultPort).toString());
    m_port->setPlaceholderText(kDefaultPort);
    m_port->setValidator(new QIntValidator(1, 65535, m_port));
    m_mountPoint->setText(settings.value(fastKey(fast::FAST_MOUNT_POINT), kDefaultMountPoint).toString());
    m_mountPoint->setPlaceholderText(kDefaultMountPoint);
    m_mountPoint->setToolTip(tr("The folder or drive where FAST shows the mounted files"));

    auto* browse = new QToolButton(this);
    browse->setIcon(style()->standardIcon(QStyle::SP_DirOpenIcon));
    browse->setToolTip(tr("Choose the folder"));
    auto* mountRow = new QHBoxLayout;
    mountRow->addWidget(m_mountPoint);
    mountRow->addWidget(browse);

    auto* form = new QFormLayout;
    form->addRow(tr("FAST &host:"), m_host);
    form->addRow(tr("FAST &port:"), m_port);
    // A row holding a layout gets no buddy of its own, so the label is made here.
    auto* mountLabel = new QLabel(tr("&Mount point:"), this);
    mountLabel->setBuddy(m_mountPoint);
    form->addRow(mountLabel, mountRow);

    auto* note = new QLabel(tr("Stored in %1.\nThe panel reads them when it opens: they apply to the next panel.")
                                .arg(QDir::toNativeSeparators(settings.fileName())),
                            this);
    note->setWordWrap(true);
    note->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    QPushButton* saveAndReopen = buttons->addButton(tr("Save and &Reopen Panel"), QDialogButtonBox::AcceptRole);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addWidget(buttons);

    connect(browse, &QToolButton::clicked, this, &SettingsDialog::browseMountPoint);
    // The box reports the button before it reports acceptance, so the flag is set when save runs.
    connect(buttons, &QDialogButtonBox::clicked, this,
            [this, saveAndReopen](QAbstractButton* button) { m_reopen = button == saveAndReopen; });
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::save);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);
}

QString SettingsDialog::summary()
{
    const QSettings settings;
    return tr("FAST at %1:%2, mount point %3")
        .arg(settings.value(fastKey(fast::FAST_HOST), kDefaultHost).toString(),
             settings.value(fastKey(fast::FAST_PORT), kDefaultPort).toString(),
             QDir::toNativeSeparators(settings.value(fastKey(fast::FAST_MOUNT_POINT), kDefaultMountPoint).toString()));
}

void SettingsDialog::browseMountPoint()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Mount point"), m_mountPoint->text());
    if (!folder.isEmpty())
        m_mountPoint->setText(QDir::toNativeSeparators(folder));
}

void SettingsDialog::save()
{
    // An emptied field means "the default", as the library reads a missing key.
    QSettings settings;
    const auto store = [&settings](const QString& key, const QLineEdit* field) {
        const QString value = field->text().trimmed();
        if (value.isEmpty())
            settings.remove(key);
        else
            settings.setValue(key, value);
    };
    store(fastKey(fast::FAST_HOST), m_host);
    store(fastKey(fast::FAST_PORT), m_port);
    store(fastKey(fast::FAST_MOUNT_POINT), m_mountPoint);
    settings.sync();
    accept();
}
