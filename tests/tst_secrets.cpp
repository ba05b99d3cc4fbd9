// Secrets stay secret: through a browser sign-in, a stored-session sign-in and a search with
// renewals, no client secret, code or token turns up in what the program says, logs or writes,
// except the refresh token in its own settings record (checked after every run, whichever cases
// ran). The listener takes loopback connections only, and only while a sign-in waits for it.
// Failed sign-ins: tst_osduclient, which looks for secrets in what they say.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "SignInWatch.h"
#include "TestBrowser.h"

#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/OsduWidget.h>

#include <osdu/OsduAuthProvider.h>

#include <QDirIterator>
#include <QLoggingCategory>
#include <QNetworkInterface>
#include <QPushButton>
#include <QSettings>
#include <QtTest>

#include <mutex>

using fast::OsduFastInitializer;

namespace {

const std::string kClientId = "fast-panel";
const std::string kClientSecret = "cl1ent-S3cret-Wq8Zr";
// Every code and token the emulator issues begins with this.
const std::string kIssued = "Zt4Xk-";

// Everything Qt logs, from any thread, while the tests run.
std::mutex logMutex;
QStringList loggedMessages;
QtMessageHandler previousHandler = nullptr;

void recordMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    {
        const std::lock_guard<std::mutex> lock(logMutex);
        loggedMessages << text;
    }
    if (type != QtDebugMsg && type != QtInfoMsg && previousHandler)
        previousHandler(type, context, text);
}

QStringList logged()
{
    const std::lock_guard<std::mutex> lock(logMutex);
    return loggedMessages;
}

} // namespace

class SecretsTest : public QObject
{
    Q_OBJECT

public:
    explicit SecretsTest(const QString& scratch) : m_scratch(scratch) {}

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void thisRunSignsInWithTheStoredSessionAndSearches();

private:
    QString m_scratch;
    EventBusRecorder m_bus;
    MessageBoxAnswerer m_boxes;
    QStringList m_said;
    SignInWatch m_browser;
    std::unique_ptr<FastEmulatorFixture> m_fast;
    std::unique_ptr<emulator::OsduEmulator> m_osdu;
    std::unique_ptr<fast::OsduWidget> m_page;
};

void SecretsTest::initTestCase()
{
    previousHandler = qInstallMessageHandler(&recordMessage);
    // Qt's own categories too: a secret must not reach a debug line either.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=true"));
    m_fast = std::make_unique<FastEmulatorFixture>();
    emulator::OsduEmulatorOptions options;
    options.clientId = kClientId;
    options.clientSecret = kClientSecret;
    options.issuedPrefix = kIssued;
    m_osdu = startOsduEmulator(m_fast->settings(), options, 4);

    OsduFastInitializer firstRun(OsduFastInitializer::AWS);
    osdu::OsduAuthProvider* provider = firstRun.authProvider().get();
    provider->setBrowserOpener(m_browser.opener(nullptr)); // the page is visited below
    // Without a page, what it says reaches no bus: kept for cleanupTestCase.
    connect(provider, &osdu::OsduAuthProvider::info, this, [this](const QString& message) { m_said << message; });
    QSignalSpy authorized(provider, &osdu::OsduAuthProvider::userAuthorized);
    QVERIFY(provider->authorizeAsync(5000));
    const quint16 port = m_browser.callbackPort();
    QVERIFY(acceptsConnections(QHostAddress::LocalHost, port));
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (!address.isLoopback() && !address.isLinkLocal())
            QVERIFY2(!acceptsConnections(address, port), qPrintable(address.toString()));
    }

    testBrowser()(m_browser.lastPage());
    QVERIFY(authorized.wait(15000));
    QVERIFY(!acceptsConnections(QHostAddress::LocalHost, port));
}

void SecretsTest::thisRunSignsInWithTheStoredSessionAndSearches()
{
    m_page = std::make_unique<fast::OsduWidget>(m_fast->client(), m_fast->projectDir());
    osdu::OsduAuthProvider* provider = OsduFastInitializer::instance(OsduFastInitializer::AWS)->authProvider().get();
    bool opened = false;
    provider->setBrowserOpener(forbiddenBrowser(&opened));
    const int grants = m_osdu->issuedTokens().refreshGrants;
    QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), 15000);
    QVERIFY(!opened);
    // The second fetch is turned away once and served after its renewal.
    m_osdu->rejectDataRequests(1, 2);
    QVERIFY(search(*m_page));
    QCOMPARE(resultLabel(*m_page), "4 result(s) found");
    QCOMPARE(m_osdu->issuedTokens().refreshGrants, grants + 2);
}

void SecretsTest::cleanupTestCase()
{
    QLoggingCategory::setFilterRules(QString());
    qInstallMessageHandler(previousHandler);
    const QString basicCredential =
        (QByteArray::fromStdString(kClientId) + ':' + QByteArray::fromStdString(kClientSecret)).toBase64();
    const QStringList secrets{q(kClientSecret), basicCredential, q(kIssued)};
    const QString storedToken = QSettings().value("AWS/OSDU_REFRESH_TOKEN").toString();
    QVERIFY(storedToken.startsWith(q(kIssued + "refresh-")));

    QStringList texts = m_bus.allTexts() + m_said + m_boxes.summaries() + logged();
    QVERIFY(texts.size() > 5);
    // The host put the secret in its settings; the refresh token has its own record.
    const QString settingsFile = QSettings().fileName();
    const QStringList allowed{"OSDU_CLIENT_SECRET=" + q(kClientSecret), "OSDU_REFRESH_TOKEN=" + storedToken};
    bool sawSettings = false;
    QDirIterator walk(m_scratch, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        QFile file(walk.next());
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
        if (file.fileName() == settingsFile) {
            sawSettings = true;
            for (const QString& line : allowed)
                QCOMPARE(lines.removeAll(line), 1);
        }
        texts += lines.replaceInStrings(QRegularExpression("^"), file.fileName() + ": ");
    }
    for (const QString& text : texts) {
        for (const QString& secret : secrets)
            QVERIFY2(!text.contains(secret), qPrintable(text));
    }
    QVERIFY(sawSettings);
}

int main(int argc, char** argv)
{
    // Whatever this program writes lands in one folder, which the last test reads whole.
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return 2;
    for (const char* variable : {"TMPDIR", "HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qputenv(variable, scratch.path().toLocal8Bit());
    QApplication application(argc, argv);
    SecretsTest test(scratch.path());
    return QTest::qExec(&test, argc, argv);
}

#include "tst_secrets.moc"
