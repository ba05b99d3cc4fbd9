#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

// Answers the modal message boxes that the code under test opens while this object lives,
// recording each one's title and text, so that a test can assert what a person would have read.
// A box is answered with its default button (OK for the library's warnings).
class MessageBoxAnswerer : public QObject
{
    Q_OBJECT

public:
    struct Box
    {
        QString title;
        QString text;
    };

    explicit MessageBoxAnswerer(QObject* parent = nullptr);

    QList<Box> boxes() const { return m_boxes; }
    // "title: text" of every box answered, in order: handy in QCOMPARE.
    QStringList summaries() const;

Q_SIGNALS:
    // A box has been seen, and is recorded; it is answered once the receivers return, so that
    // they may still look at it (take a picture of the window, say).
    void boxShown(QMessageBox* box);

private:
    void answerOpenBoxes();

    QTimer m_poll;
    QList<Box> m_boxes;
};
