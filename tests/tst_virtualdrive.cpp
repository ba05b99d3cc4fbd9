#include <fast/client/VirtualDrive.h>

#include "support/TestSettings.h"

#include <QtTest>

class TestVirtualDrive : public QObject
{
    Q_OBJECT

private slots:
    void mountPointIsReadAfreshAndCleaned()
    {
        TestSettings settings;
        QCOMPARE(fast::mountPoint(), QStringLiteral("K:"));
        settings.set("FAST", "FAST_MOUNT_POINT", R"(C:\mnt\fast\)");
        QCOMPARE(fast::mountPoint(), QStringLiteral("C:/mnt/fast"));
        settings.set("FAST", "FAST_MOUNT_POINT", "/srv//drive/./");
        QCOMPARE(fast::mountPoint(), QStringLiteral("/srv/drive"));
        settings.remove("FAST", "FAST_MOUNT_POINT");
        QCOMPARE(fast::mountPoint(), QStringLiteral("K:"));
    }

    void isMountedInVirtualDriveIsACaseBlindPrefixTest_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("mounted");

        QTest::newRow("lower-case drive, backslashes") << "" << R"(k:\survey\cube.kv)" << true;
        QTest::newRow("drive root") << "" << "K:" << true;
        QTest::newRow("other drive") << "" << "C:/K:/cube.kv" << false;
        QTest::newRow("colon missing") << "" << "Kx/cube.kv" << false;
        QTest::newRow("empty") << "" << "" << false;
        // Kept on purpose: the test is on text, not on path components.
        QTest::newRow("longer drive text") << "" << "K:x/cube.kv" << true;
        QTest::newRow("folder sharing a prefix") << "/srv/drive" << "/srv/drive2/a.kv" << true;
        QTest::newRow("cleaned first") << "/srv/drive" << "/srv/other/../drive/a.kv" << true;
        QTest::newRow("outside the folder") << "/srv/drive" << "/srv/a.kv" << false;
    }

    void isMountedInVirtualDriveIsACaseBlindPrefixTest()
    {
        QFETCH(QString, setting);
        QFETCH(QString, path);
        QFETCH(bool, mounted);
        TestSettings settings;
        if (!setting.isEmpty())
            settings.set("FAST", "FAST_MOUNT_POINT", setting);
        QCOMPARE(fast::isMountedInVirtualDrive(path), mounted);
    }

    void fileExistsInVirtualDriveLooksForTheProjectFileAtTheRoot_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("exists");

        QTest::newRow("two dots drop only the last suffix") << "/project/cube.north.dat" << true;
        QTest::newRow("backslashes") << R"(C:\project\cube.north.dat)" << true;
        QTest::newRow("already the project extension") << "cube.north.kv" << true;
        QTest::newRow("no suffix") << "/project/cube.north" << false;
        QTest::newRow("base name alone is not enough") << "/project/cube.dat" << false;
        QTest::newRow("a folder counts") << "/project/folder.x" << true;
        QTest::newRow("an entry in a subfolder does not") << "/project/inner.dat" << false;
    }

    void fileExistsInVirtualDriveLooksForTheProjectFileAtTheRoot()
    {
        QFETCH(QString, path);
        QFETCH(bool, exists);
        QTemporaryDir drive;
        const QDir root(drive.path());
        QVERIFY(root.mkpath("folder.kv") && root.mkpath("sub"));
        for (const char* name : {"cube.north.kv", "sub/inner.kv"}) {
            QFile file(root.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        TestSettings settings;
        settings.set("FAST", "FAST_MOUNT_POINT", drive.path() + '/');
        QCOMPARE(fast::fileExistsInVirtualDrive(path), exists);
    }

    void modifyVdsFilepathMakesAnHttpsUrl_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("url");

        QTest::newRow("region removed") << "s3://bucket.s3.eu-west-1.amazonaws.com/survey/cube/"
                                        << "https://bucket.s3.amazonaws.com/survey/cube";
        QTest::newRow("no region") << "s3://bucket.s3.amazonaws.com/cube"
                                   << "https://bucket.s3.amazonaws.com/cube";
        QTest::newRow("no domain: scheme only, one slash dropped") << "s3://bucket/survey//"
                                                                   << "https://bucket/survey/";
        QTest::newRow("every scheme replaced") << "s3://a/s3:b" << "https://a/https:b";
        QTest::newRow("first s3 wins, even inside a name")
            << "s3://mys3data.s3.us-east-2.amazonaws.com/x" << "https://mys3.amazonaws.com/x";
        QTest::newRow("domain before the first s3 erases the rest")
            << "https://data.amazonaws.com/s3/cube/" << "https://data.amazonaws.com/s3";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("one slash") << "/" << "";
        QTest::newRow("s3 alone") << "s3" << "s3";
        QTest::newRow("scheme alone") << "s3:" << "https:";
    }

    void modifyVdsFilepathMakesAnHttpsUrl()
    {
        QFETCH(QString, path);
        QFETCH(QString, url);
        QCOMPARE(QString::fromStdString(fast::modifyVdsFilepath(path.toStdString())), url);
    }
};

QTEST_GUILESS_MAIN(TestVirtualDrive)
#include "tst_virtualdrive.moc"
