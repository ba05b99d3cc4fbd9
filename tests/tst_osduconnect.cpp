// Connecting to OSDU before the settings are complete. A program of its own: the initializer is
// one per process, and here it is the failed one.

#include "EventBusRecorder.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "TestSettings.h"

#include <fast/client/Fast.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/panel/OsduWidget.h>

#include <osdu/OsduAuthProvider.h>

#include <QComboBox>
#include <QPushButton>
#include <QtTest>

using fast::OsduFastInitializer;

class OsduConnectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMissingRequiredSettingLeavesTheInitializerUnready();
    void connectWithoutSettingsFailsEveryTime();
};

void OsduConnectTest::aMissingRequiredSettingLeavesTheInitializerUnready()
{
    TestSettings settings;
    // Nothing else notices the Azure index signing in the AWS way.
    QCOMPARE(OsduFastInitializer(OsduFastInitializer::Azure).authProvider()->getProviderName(), "Azure");
    for (const char* key : {"OSDU_CLIENT_ID", "OSDU_CLIENT_SECRET", "OSDU_OAUTH_URL"})
        settings.set("AWS", key, "set");
    const OsduFastInitializer initializer(OsduFastInitializer::AWS);
    QVERIFY(!initializer.isInitialized());
    QCOMPARE(initializer.lastError(), "Please specify all required initialization parameters in Korvane settings.");
    // Nothing was handed to the provider, so it cannot start a sign-in.
    QVERIFY(!initializer.authProvider()->authorizeAsync(1000));

    settings.set("AWS", "OSDU_OAUTH_TOKEN_URL", "set");
    QVERIFY(OsduFastInitializer(OsduFastInitializer::AWS).isInitialized());
}

void OsduConnectTest::connectWithoutSettingsFailsEveryTime()
{
    TestSettings settings;
    QTemporaryDir project;
    auto page = std::make_unique<fast::OsduWidget>(std::make_shared<fast::Fast>("127.0.0.1"), project.path());
    providerChoice(*page)->setCurrentIndex(OsduFastInitializer::Azure);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;
    QPushButton* connect = connectButton(*page);
    QTest::mouseClick(connect, Qt::LeftButton);
    QTest::mouseClick(connect, Qt::LeftButton);
    QTRY_COMPARE(boxes.boxes().size(), 2);
    const QString failure = "Error Initializing OSDU: Failed to initialize the OSDU runtime environment.";
    QCOMPARE(boxes.summaries(), QStringList({failure, failure}));
    QCOMPARE(bus.texts(Trace), QStringList({"FAST OSDU connection error", "FAST OSDU connection error"}));
    QVERIFY(connect->isEnabled());
    QVERIFY(!providerChoice(*page)->isEnabled());
    // A sign-in failure without details shows the message alone.
    page->authenticationError("Sign-in was refused", "", QUrl());
    QTRY_COMPARE(boxes.summaries().value(2), "Failed to connect to OSDU environment: Sign-in was refused");
    page = std::make_unique<fast::OsduWidget>(std::make_shared<fast::Fast>("127.0.0.1"), project.path()); // reopened
    QCOMPARE(providerChoice(*page)->currentText(), "Microsoft Azure");
    QVERIFY(!providerChoice(*page)->isEnabled());
}

QTEST_MAIN(OsduConnectTest)
#include "tst_osduconnect.moc"
