#include "PanelDriver.h"

#include <fast/client/VirtualDrive.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

void answerMountDialog(QWidget* page, const QString& name, const QString& button)
{
    fast::MountNewVolume* dialog = openMountDialog(page);
    if (!dialog)
        return;
    QTest::keyClicks(fileNameField(*dialog), name);
    for (QPushButton* candidate : {saveButton(*dialog), cancelButton(*dialog)}) {
        if (candidate && candidate->text() == button)
            QTest::mouseClick(candidate, Qt::LeftButton);
    }
}

void answerNextFileDialog(const QString& path)
{
    // Polls until the dialog has come and gone. The answer is the absolute path written into the
    // dialog's own name field, not selectFile(): that one leaves the field alone while it has the
    // focus, and the dialog then resolves whatever the field held. The folder is set as well, so
    // that the field's own completion, which may shorten the path to the bare name once the
    // folder's listing arrives, still names the same file. Should the dialog complain in a box of
    // its own, the box is closed and the answer given again.
    const QString absolute = QFileInfo(path).absoluteFilePath();
    auto* poll = new QTimer(qApp);
    auto seen = std::make_shared<bool>(false);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, absolute, seen] {
        QFileDialog* open = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* box = qobject_cast<QMessageBox*>(widget);
                box && box->isVisible() && qobject_cast<QFileDialog*>(box->parentWidget())) {
                box->close();
                return;
            }
            if (auto* dialog = qobject_cast<QFileDialog*>(widget); dialog && dialog->isVisible())
                open = dialog;
        }
        if (!open) {
            if (*seen)
                poll->deleteLater();
            return;
        }
        *seen = true;
        auto* field = open->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (!field)
            return;
        if (field->text() != absolute) {
            open->setDirectory(QFileInfo(absolute).absolutePath());
            field->setText(absolute);
            return; // accepted on a later poll, once the field is seen to hold the path
        }
        // Queued: accept() may open a box of its own, which this poll must be free to close.
        QMetaObject::invokeMethod(open, "accept", Qt::QueuedConnection);
    });
    poll->start(10);
}

bool search(const fast::OsduWidget& page)
{
    QPushButton* button = searchButton(page);
    // While the search runs the button reads Cancel; it has its own text back once it is over.
    const QString idle = button->text();
    QTest::mouseClick(button, Qt::LeftButton);
    return QTest::qWaitFor([button, idle] { return button->isEnabled() && button->text() == idle; }, 120000);
}

QString freeFileName(const QString& wanted, const QString& projectFolder)
{
    const auto taken = [&projectFolder](const QString& name) {
        return QDir(projectFolder).exists(name) || fast::fileExistsInVirtualDrive(name);
    };
    QString name = wanted;
    for (int suffix = 2; taken(name); ++suffix)
        name = QStringLiteral("%1-%2").arg(wanted).arg(suffix);
    return name;
}
