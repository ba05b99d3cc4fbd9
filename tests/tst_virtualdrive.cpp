#include <fast/client/VirtualDrive.h>

#include "support/TestSettings.h"

#include <QtTest>

class VirtualDriveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mountPointIsReadAfreshAndCleanedAndMountedPathsAreACaseBlindPrefix()
    {
        TestSettings settings;
        QCOMPARE(fast::mountPoint(), QStringLiteral("K:"));
        settings.set("FAST", "FAST_MOUNT_POINT", R"(C:\mnt\\fast\.\)");
        QCOMPARE(fast::mountPoint(), QStringLiteral("C:/mnt/fast"));
        QVERIFY(fast::isMountedInVirtualDrive(R"(c:\MNT\fast\cube.kv)"));
        QVERIFY(fast::isMountedInVirtualDrive("C:/mnt/other/../fast/cube.kv"));
        // Kept on purpose: the test is on text, not on path components.
        QVERIFY(fast::isMountedInVirtualDrive("C:/mnt/fastest/cube.kv"));
        QVERIFY(!fast::isMountedInVirtualDrive("D:/C:/mnt/fast/cube.kv"));
        QVERIFY(!fast::isMountedInVirtualDrive("C:/mnt/cube.kv"));
        settings.remove("FAST", "FAST_MOUNT_POINT");
        QCOMPARE(fast::mountPoint(), QStringLiteral("K:"));
    }

    void fileExistsInVirtualDriveLooksForTheProjectFileAtTheRoot()
    {
        QTemporaryDir drive;
        const QDir root(drive.path());
        QVERIFY(root.mkpath("folder.kv") && root.mkpath("sub"));
        for (const char* name : {"cube.north.kv", "sub/inner.kv"}) {
            QFile file(root.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        TestSettings settings;
        settings.set("FAST", "FAST_MOUNT_POINT", drive.path() + '/');
        // Only the last suffix goes, and the name must match whole.
        QVERIFY(fast::fileExistsInVirtualDrive("/project/cube.north.dat"));
        QVERIFY(fast::fileExistsInVirtualDrive(R"(C:\project\cube.north.dat)"));
        QVERIFY(!fast::fileExistsInVirtualDrive("/project/cube.dat"));
        // Any entry directly under the root will do, a folder too, but nothing deeper.
        QVERIFY(fast::fileExistsInVirtualDrive("/project/folder.x"));
        QVERIFY(!fast::fileExistsInVirtualDrive("/project/inner.dat"));
    }

    void modifyVdsFilepathMakesAnHttpsUrl_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("url");

        QTest::newRow("region removed") << "s3://bucket.s3.eu-west-1.amazonaws.com/survey/cube/"
                                        << QString("https://bucket.s3.amazonaws.com/survey/cube");
        QTest::newRow("no domain: every scheme replaced, one slash dropped")
            << "s3://bucket/s3:survey//" << QString("https://bucket/https:survey/");
        QTest::newRow("first s3 wins, even inside a name")
            << "s3://mys3data.s3.us-east-2.amazonaws.com/x" << QString("https://mys3.amazonaws.com/x");
        QTest::newRow("domain before the first s3 erases the rest")
            << "https://data.amazonaws.com/s3/cube/" << QString("https://data.amazonaws.com/s3");
        QTest::newRow("empty") << "" << QString();
    }

    void modifyVdsFilepathMakesAnHttpsUrl()
    {
        QFETCH(QString, path);
        QFETCH(QString, url);
        QCOMPARE(QString::fromStdString(fast::modifyVdsFilepath(path.toStdString())), url);
    }

    void samePathFollowsWindowsOrExactRules()
    {
        // Two paths, whether they name one file under Windows' rules, and byte for byte.
        for (const auto& [a, b, windows, exact] :
             {std::tuple(R"(C:\Data\Cube.vds)", "c:/data/cube.vds", true, false),
              std::tuple("C:/data/a.vds", "C:/data/b.vds", false, false),
              std::tuple("https://store/A.vds", "https://store/a.vds", false, false)}) {
            QCOMPARE(fast::samePath(a, b, fast::PathRules::Windows), windows);
            QCOMPARE(fast::samePath(a, b, fast::PathRules::Exact), exact);
        }
    }

    void theDriveHoldsOnlyNamesWindowsTakes()
    {
        for (const QString name :
             {"north-sea", "north sea.v2", "CONSOLE", "COM10", "LPT0", "nul-shallow", "été", "CONIN", "COM⁴"})
            QVERIFY2(fast::driveCanHoldFileName(name), qPrintable(name));
        for (const QString name : {"",     "   ",     "a/b",   "a\\b",  "c:",     "a*",          "why?",    "\"q\"",
                                   "<a>",  "a|b",     "cube.", "cube ", "CON",    "con",         "Aux.vds", "nul .txt",
                                   "COM1", "lpt9.kv", "a\tb",  "x\x1f", "conin$", "CONOUT$.log", "COM¹",    "lpt³.vds"})
            QVERIFY2(!fast::driveCanHoldFileName(name), qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(VirtualDriveTest)
#include "tst_virtualdrive.moc"
