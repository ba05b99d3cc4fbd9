#include <korvane/MDEventBus.h>

#include "support/EventBusRecorder.h"

#include <QtTest>

#include <atomic>
#include <memory>
#include <vector>

class TestEventBus : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void listenersRunInOrderOnTheSendersThread();
    void removedListenerIsNotCalledAgain();
    void listenerMayRemoveListenersDuringDelivery();
    void listenerMaySendFromInsideADelivery();
    void concurrentSendersDeliverEveryMessageOnce();
    void removeListenerWaitsForDeliveriesOnOtherThreads();
    void messageWithoutListenersIsNotKept();

private:
    int listen(MDEventBus::Listener listener)
    {
        m_ids.push_back(MDEventBus::addListener(std::move(listener)));
        return m_ids.back();
    }

    // The bus is process-wide, so every test leaves it as it found it.
    std::vector<int> m_ids;
};

void TestEventBus::cleanup()
{
    for (int id : m_ids)
        MDEventBus::removeListener(id);
    m_ids.clear();
}

void TestEventBus::listenersRunInOrderOnTheSendersThread()
{
    QStringList calls;
    QList<QThread*> threads;
    for (const QString& name : QStringList{"a", "b", "c"}) {
        listen([&calls, &threads, name](int kind, const QString& text) {
            calls << QString("%1:%2:%3").arg(name).arg(kind).arg(text);
            threads << QThread::currentThread();
        });
    }

    MDEventBus::sendMessage(3, "main", false);
    QThread* sender = nullptr;
    std::unique_ptr<QThread> worker(QThread::create([&sender] {
        sender = QThread::currentThread();
        MDEventBus::sendMessage(4, "worker", true);
    }));
    worker->start();
    QVERIFY(worker->wait(5000));

    QCOMPARE(calls, QStringList({"a:3:main", "b:3:main", "c:3:main", "a:4:worker", "b:4:worker",
                                 "c:4:worker"}));
    QThread* const main = QThread::currentThread();
    QCOMPARE(threads, QList<QThread*>({main, main, main, sender, sender, sender}));
}

void TestEventBus::removedListenerIsNotCalledAgain()
{
    int first = 0, second = 0;
    const int id = listen([&first](int, const QString&) { ++first; });
    listen([&second](int, const QString&) { ++second; });
    MDEventBus::sendMessage(3, "one", false);
    MDEventBus::removeListener(id);
    MDEventBus::removeListener(id);
    MDEventBus::sendMessage(3, "two", false);
    QCOMPARE(first, 1);
    QCOMPARE(second, 2);
}

void TestEventBus::listenerMayRemoveListenersDuringDelivery()
{
    int calls[4] = {0, 0, 0, 0};
    int ids[4];
    ids[0] = listen([&calls](int, const QString&) { ++calls[0]; });
    ids[1] = listen([&calls, &ids](int, const QString&) {
        ++calls[1];
        // Itself, one before it and one after it.
        MDEventBus::removeListener(ids[1]);
        MDEventBus::removeListener(ids[0]);
        MDEventBus::removeListener(ids[2]);
    });
    ids[2] = listen([&calls](int, const QString&) { ++calls[2]; });
    ids[3] = listen([&calls](int, const QString&) { ++calls[3]; });

    MDEventBus::sendMessage(3, "one", false);
    MDEventBus::sendMessage(3, "two", false);
    QCOMPARE(calls[0], 1);
    QCOMPARE(calls[1], 1);
    QVERIFY(calls[2] <= 1);
    QCOMPARE(calls[3], 2);
}

void TestEventBus::listenerMaySendFromInsideADelivery()
{
    listen([](int kind, const QString&) {
        if (kind == 1)
            MDEventBus::sendMessage(2, "inner", false);
    });
    EventBusRecorder recorder;
    MDEventBus::sendMessage(1, "outer", false);
    QCOMPARE(recorder.allTexts(), QStringList({"inner", "outer"}));
}

void TestEventBus::concurrentSendersDeliverEveryMessageOnce()
{
    const int senders = 4, perSender = 1000;
    EventBusRecorder recorder;
    std::atomic<bool> sending{true};
    // Listeners coming and going while messages fly must not disturb the delivery.
    std::unique_ptr<QThread> churn(QThread::create([&sending] {
        while (sending)
            MDEventBus::removeListener(MDEventBus::addListener([](int, const QString&) {}));
    }));
    churn->start();
    std::vector<std::unique_ptr<QThread>> threads;
    for (int s = 0; s < senders; ++s) {
        threads.emplace_back(QThread::create([s] {
            for (int n = 0; n < perSender; ++n)
                MDEventBus::sendMessage(s, QString::number(n), false);
        }));
        threads.back()->start();
    }
    for (const auto& thread : threads)
        QVERIFY(thread->wait(30000));
    sending = false;
    QVERIFY(churn->wait(5000));

    const QList<EventBusRecorder::Message> messages = recorder.messages();
    QCOMPARE(messages.size(), senders * perSender);
    std::vector<int> next(senders, 0);
    for (const EventBusRecorder::Message& message : messages) {
        QVERIFY(message.kind >= 0 && message.kind < senders);
        QCOMPARE(message.text, QString::number(next[message.kind]++));
    }
}

void TestEventBus::removeListenerWaitsForDeliveriesOnOtherThreads()
{
    std::atomic<int> removedCalls{0}, allCalls{0};
    std::atomic<bool> sending{true};
    const int removed = listen([&removedCalls](int, const QString&) { ++removedCalls; });
    listen([&allCalls](int, const QString&) { ++allCalls; });
    std::unique_ptr<QThread> sender(QThread::create([&sending] {
        while (sending)
            MDEventBus::sendMessage(3, "tick", false);
    }));
    sender->start();

    QTRY_VERIFY(allCalls > 100);
    MDEventBus::removeListener(removed);
    const int callsAtRemoval = removedCalls;
    const int seen = allCalls;
    QTRY_VERIFY(allCalls > seen + 100);
    sending = false;
    QVERIFY(sender->wait(5000));
    QCOMPARE(int(removedCalls), callsAtRemoval);
}

void TestEventBus::messageWithoutListenersIsNotKept()
{
    MDEventBus::sendMessage(1, "nobody hears this", true);
    EventBusRecorder recorder;
    MDEventBus::sendMessage(4, "heard", false);
    QCOMPARE(recorder.allTexts(), QStringList({"heard"}));
}

QTEST_GUILESS_MAIN(TestEventBus)
#include "tst_eventbus.moc"
