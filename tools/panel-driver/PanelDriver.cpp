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
    // Polls until the dialog has come and gone. The dialog resolves the name against its folder;
    // should it still complain in a box of its own, the box is closed and the answer given again.
    auto* poll = new QTimer(qApp);
    auto seen = std::make_shared<bool>(false);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, path, seen] {
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
        const QFileInfo file(path);
        open->setDirectory(file.absolutePath());
        open->selectFile(file.fileName());
        // Queued: accept() may open a box of its own, which this poll must be free to close.
        QMetaObject::invokeMethod(open, "accept", Qt::QueuedConnection);
    });
    poll->start(10);
}

bool search(const fast::OsduWidget& page)
{
    QPushButton* button = searchButton(page);
    QTest::mouseClick(button, Qt::LeftButton);
    return QTest::qWaitFor([button] { return button->isEnabled(); }, 120000);
}

QString freeFileName(const QString& wanted, const QString& projectFolder)
{
    const auto taken = [&projectFolder](const QString& name) {
        return QDir(projectFolder).exists(name) || QDir(fast::mountPoint()).exists(name)
               || fast::fileExistsInVirtualDrive(name);
    };
    QString name = wanted;
    for (int suffix = 2; taken(name); ++suffix)
        name = QStringLiteral("%1-%2").arg(wanted).arg(suffix);
    return name;
}
