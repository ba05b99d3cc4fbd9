#include <korvane/MDEventBus.h>

#include "support/EventBusRecorder.h"

#include <QtTest>

#include <atomic>
#include <memory>
#include <vector>

namespace {

std::unique_ptr<QThread> startThread(std::function<void()> work)
{
    std::unique_ptr<QThread> thread(QThread::create(std::move(work)));
    thread->start();
    return thread;
}

} // namespace

class TestEventBus : public QObject
{
    Q_OBJECT

    int listen(MDEventBus::Listener listener)
    {
        m_ids.push_back(MDEventBus::addListener(std::move(listener)));
        return m_ids.back();
    }

    // The bus is process-wide, so every test leaves it as it found it.
    std::vector<int> m_ids;

private slots:
    void cleanup()
    {
        for (int id : m_ids)
            MDEventBus::removeListener(id);
        m_ids.clear();
    }

    void listenersRunInOrderOnTheSendersThread()
    {
        QStringList calls;
        for (const QString& name : QStringList{"a", "b", "c"}) {
            listen([&calls, name](int kind, const QString& text) {
                calls << QString("%1:%2:%3@%4").arg(name).arg(kind).arg(text,
                                                    QThread::currentThread()->objectName());
            });
        }
        QThread::currentThread()->setObjectName("main");
        MDEventBus::sendMessage(3, "m", false);
        const auto worker = startThread([] {
            QThread::currentThread()->setObjectName("worker");
            MDEventBus::sendMessage(4, "w", true);
        });
        QVERIFY(worker->wait(5000));
        QCOMPARE(calls, QStringList({"a:3:m@main", "b:3:m@main", "c:3:m@main", "a:4:w@worker",
                                     "b:4:w@worker", "c:4:w@worker"}));
    }

    void listenerMayRemoveListenersDuringDelivery()
    {
        int calls[4] = {0, 0, 0, 0};
        int ids[4];
        ids[0] = listen([&calls](int, const QString&) { ++calls[0]; });
        ids[1] = listen([&calls, &ids](int, const QString&) {
            ++calls[1];
            // Itself, one before it and one after it.
            for (int i : {1, 0, 2})
                MDEventBus::removeListener(ids[i]);
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

    void listenerMaySendFromInsideADelivery()
    {
        listen([](int kind, const QString&) {
            if (kind == 1)
                MDEventBus::sendMessage(2, "inner", false);
        });
        EventBusRecorder recorder;
        MDEventBus::sendMessage(1, "outer", false);
        QCOMPARE(recorder.allTexts(), QStringList({"inner", "outer"}));
    }

    void concurrentSendersDeliverEveryMessageOnceInTheirOrder()
    {
        const int senders = 4, perSender = 1000;
        EventBusRecorder recorder;
        std::atomic<bool> sending{true};
        // Listeners coming and going while messages fly must not disturb the delivery.
        const auto churn = startThread([&sending] {
            while (sending)
                MDEventBus::removeListener(MDEventBus::addListener([](int, const QString&) {}));
        });
        const auto stopChurn = qScopeGuard([&] {
            sending = false;
            churn->wait();
        });
        std::vector<std::unique_ptr<QThread>> threads;
        for (int s = 0; s < senders; ++s) {
            threads.push_back(startThread([s] {
                for (int n = 0; n < perSender; ++n)
                    MDEventBus::sendMessage(s, QString::number(n), false);
            }));
        }
        for (const auto& thread : threads)
            QVERIFY(thread->wait(30000));

        const QList<EventBusRecorder::Message> messages = recorder.messages();
        QCOMPARE(messages.size(), senders * perSender);
        std::vector<int> next(senders, 0);
        for (const EventBusRecorder::Message& message : messages) {
            QVERIFY(message.kind >= 0 && message.kind < senders);
            QCOMPARE(message.text, QString::number(next[message.kind]++));
        }
    }

    void removeListenerWaitsForDeliveriesOnOtherThreads()
    {
        std::atomic<int> removedCalls{0}, allCalls{0};
        std::atomic<bool> sending{true};
        const int removed = listen([&removedCalls](int, const QString&) { ++removedCalls; });
        listen([&allCalls](int, const QString&) { ++allCalls; });
        const auto sender = startThread([&sending] {
            while (sending)
                MDEventBus::sendMessage(3, "tick", false);
        });
        const auto stopSender = qScopeGuard([&] {
            sending = false;
            sender->wait();
        });

        QTRY_VERIFY(allCalls > 100);
        MDEventBus::removeListener(removed);
        const int callsAtRemoval = removedCalls;
        const int seen = allCalls;
        QTRY_VERIFY(allCalls > seen + 100);
        QCOMPARE(int(removedCalls), callsAtRemoval);
    }

    void messageWithoutListenersIsNotKept()
    {
        MDEventBus::sendMessage(1, "nobody hears this", true);
        EventBusRecorder recorder;
        MDEventBus::sendMessage(4, "heard", false);
        QCOMPARE(recorder.allTexts(), QStringList({"heard"}));
    }
};

QTEST_GUILESS_MAIN(TestEventBus)
#include "tst_eventbus.moc"
