#include "MessageBoxAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

MessageBoxAnswerer::MessageBoxAnswerer(QObject* parent) : QObject(parent)
{
    // A modal box runs its own event loop, in which this timer keeps firing.
    connect(&m_poll, &QTimer::timeout, this, &MessageBoxAnswerer::answerOpenBoxes);
    m_poll.start(10);
}

QStringList MessageBoxAnswerer::summaries() const
{
    QStringList result;
    for (const Box& box : m_boxes)
        result << box.title + ": " + box.text;
    return result;
}

void MessageBoxAnswerer::answerOpenBoxes()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (!box || !box->isVisible() || box->property("answered").toBool())
            continue;
        box->setProperty("answered", true);
        m_boxes.append({box->windowTitle(), box->text()});
        Q_EMIT boxShown(box);
        QAbstractButton* button = box->defaultButton();
        if (!button)
            button = box->buttons().value(0);
        if (button)
            button->click();
        else
            box->reject();
    }
}
