#include <korvane/MDEventBus.h>

#include "support/EventBusRecorder.h"

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

class EventBusTest : public QObject
{
    Q_OBJECT

    // The bus is process-wide, so every test leaves it as it found it.
    std::vector<int> m_ids;
    int listen(MDEventBus::Listener listener)
    {
        m_ids.push_back(MDEventBus::addListener(std::move(listener)));
        return m_ids.back();
    }

private Q_SLOTS:
    void cleanup()
    {
        for (int id : m_ids)
            MDEventBus::removeListener(id);
        m_ids.clear();
    }

    void listenersRunInOrderOnTheSendersThreadAndMayRemoveOrSendMeanwhile()
    {
        MDEventBus::sendMessage(3, "before any listener", true); // goes nowhere, not kept
        QStringList calls;
        int ids[4];
        for (int i = 0; i < 4; ++i) {
            ids[i] = listen([&calls, &ids, i](int, const QString& text) {
                calls << QString("%1 %2@%3").arg(i).arg(text).arg(QThread::currentThread()->objectName());
                if (i == 1 && text == "one") {
                    for (int j : {1, 0, 2}) // itself, one before it and one after it
                        MDEventBus::removeListener(ids[j]);
                    MDEventBus::sendMessage(3, "inner", false);
                }
            });
        }
        QThread::currentThread()->setObjectName("main");
        MDEventBus::sendMessage(3, "one", false);
        std::thread([] {
            QThread::currentThread()->setObjectName("worker");
            MDEventBus::sendMessage(3, "two", false);
        }).join();
        // The one removed after it may still hear the delivery under way, but nothing later.
        calls.removeOne("2 one@main");
        QCOMPARE(calls, QStringList({"0 one@main", "1 one@main", "3 inner@main", "3 one@main", "3 two@worker"}));
    }

    void concurrentSendersDeliverEachMessageOnceInOrderAndNoneAfterARemoval()
    {
        const int senders = 4, perSender = 1000;
        EventBusRecorder recorder;
        std::atomic<int> removedCalls{0}, callsAtRemoval{-1};
        const int removed = listen([&removedCalls](int, const QString&) { ++removedCalls; });
        std::vector<std::thread> threads;
        threads.reserve(senders);
        for (int s = 0; s < senders; ++s) {
            threads.emplace_back([&, s] {
                for (int n = 0; n < perSender; ++n) {
                    // Listeners coming and going must not disturb other threads' deliveries.
                    MDEventBus::removeListener(MDEventBus::addListener([](int, const QString&) {}));
                    MDEventBus::sendMessage(s, QString::number(n), false);
                    // The last to start removes it while the others are most likely still sending.
                    if (s == senders - 1 && n == perSender / 2) {
                        MDEventBus::removeListener(removed);
                        callsAtRemoval = removedCalls.load();
                    }
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(removedCalls.load(), callsAtRemoval.load());
        std::vector<int> next(senders, 0);
        for (const EventBusRecorder::Message& message : recorder.messages())
            QCOMPARE(message.text, QString::number(next.at(message.kind)++));
        QCOMPARE(next, std::vector<int>(senders, perSender));
    }
};

QTEST_GUILESS_MAIN(EventBusTest)
#include "tst_eventbus.moc"
