#include "PanelDriver.h"

#include "SignInWatch.h"

#include <fast/osdu/SearchInput.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

fast::MountNewVolume* openMountDialog(QWidget* page)
{
    for (auto* dialog : page->findChildren<fast::MountNewVolume*>()) {
        if (dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

void answerMountDialog(QWidget* page, const QString& name, const QString& button)
{
    fast::MountNewVolume* dialog = openMountDialog(page);
    if (!dialog)
        return;
    QLineEdit* nameEdit = dialog->findChild<QLineEdit*>();
    QTest::keyClicks(nameEdit, name);
    for (auto* candidate : dialog->findChildren<QPushButton*>()) {
        if (candidate->text() == button)
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

QPushButton* searchButton(const fast::OsduWidget& page)
{
    return page.findChildren<QPushButton*>().at(0);
}

QPushButton* connectButton(const fast::OsduWidget& page)
{
    return page.findChildren<QPushButton*>().at(1);
}

fast::SearchInput* searchInput(const fast::OsduWidget& page)
{
    return page.findChild<fast::SearchInput*>();
}

QString resultLabel(const fast::OsduWidget& page)
{
    return page.findChildren<QLabel*>().first()->text();
}

QStringList resultNames(const fast::OsduWidget& page)
{
    QStringList names;
    for (const fast::VdsModel& record : page.treeView()->model()->vdsList())
        names << record.name;
    return names;
}

bool search(const fast::OsduWidget& page)
{
    QPushButton* button = searchButton(page);
    QTest::mouseClick(button, Qt::LeftButton);
    return QTest::qWaitFor([button] { return button->isEnabled(); }, 120000);
}

bool connectAndSearch(const fast::OsduWidget& page, osdu::OsduAuthProvider& provider)
{
    QSignalSpy authorized(&provider, &osdu::OsduAuthProvider::userAuthorized);
    QTest::mouseClick(connectButton(page), Qt::LeftButton);
    return authorized.wait(kSignInLimitMs) && search(page);
}
