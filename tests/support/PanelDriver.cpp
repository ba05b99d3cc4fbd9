#include "PanelDriver.h"

#include <fast/panel/MountNewVolume.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

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
    auto* poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, path] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<QFileDialog*>(widget);
            if (dialog && dialog->isVisible()) {
                dialog->selectFile(path);
                static_cast<QDialog*>(dialog)->accept(); // public as a QDialog
                poll->deleteLater();
                return;
            }
        }
    });
    poll->start(10);
}
