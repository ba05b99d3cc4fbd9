// The mount dialog as the user drives it, against the emulator: what it shows, what goes over
// the wire and the link it renames. How a failed mount ends: tst_faults.

#include "FastEmulatorFixture.h"
#include "PanelDriver.h"

#include <fast/fast.h>
#include <fast/panel/FileMove_p.h>
#include <fast/panel/MountNewVolume.h>
#include <kvWidgets/DoubleSlider.h>

#include <QtTest>
#include <QtWidgets>
#include <clocale>

Q_DECLARE_METATYPE(fast::SubvolumeRange)
Q_DECLARE_METATYPE(std::string) // the library leaves it to its hosts

namespace {

const fast::SubvolumeRange kVolume{"10", "1199", "20", "899", "0.5", "99.5"};

QWidget* at(const QDialog& dialog, int row, int column)
{
    QLayoutItem* item = static_cast<QGridLayout*>(dialog.layout())->itemAtPosition(row, column);
    return item ? item->widget() : nullptr;
}

// Cancel and Save, in the order they sit in the box at the bottom right.
QPushButton* button(const QDialog& dialog, int index)
{
    auto* box = static_cast<QGridLayout*>(dialog.layout())->itemAtPosition(14, 1)->layout();
    return qobject_cast<QPushButton*>(box->itemAt(index)->widget());
}

// "min..max [lower,upper] spins min..max [lower,upper]" of the axis whose label sits on row.
QString axisState(const QDialog& dialog, int row)
{
    auto* lower = qobject_cast<QSpinBox*>(at(dialog, row + 1, 0));
    auto* upper = qobject_cast<QSpinBox*>(at(dialog, row + 1, 1));
    auto* slider = qobject_cast<kvWidgets::DoubleSlider*>(at(dialog, row + 2, 0));
    return QString("%1..%2 [%3,%4] spins %5..%6 [%7,%8]")
        .arg(slider->minimum())
        .arg(slider->maximum())
        .arg(slider->lowerValue())
        .arg(slider->upperValue())
        .arg(lower->minimum())
        .arg(upper->maximum())
        .arg(lower->value())
        .arg(upper->value());
}

// The dialog of a registered volume, shown as the page shows it.
struct MountSession
{
    explicit MountSession(FastEmulatorFixture& fixture, const fast::SubvolumeRange& range = kVolume)
        : vdsId(fixture.client()->registerVds("/data/a.vds")->getMessage()),
          dialog(fixture.client(), vdsId, range, fixture.projectDir()), finished(&dialog, &QDialog::finished),
          mounted(&dialog, &fast::MountNewVolume::vdsMounted)
    {
        fixture.emulator().clearRequests();
        dialog.show();
    }
    void save(const QString& name)
    {
        fileNameField(dialog)->setText(name);
        button(dialog, 1)->click();
    }
    std::string vdsId;
    fast::MountNewVolume dialog;
    QSignalSpy finished;
    QSignalSpy mounted;
};

QString labelState(const QDialog& dialog)
{
    auto* label = qobject_cast<QLabel*>(at(dialog, 0, 0));
    return label->text() + ' ' + label->styleSheet();
}

} // namespace

class MountDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<std::string>(); }
    void cleanup()
    {
        std::setlocale(LC_NUMERIC, "C");
        QLocale::setDefault(QLocale::system());
    }

    void layoutPutsTheNameFirstAndTheButtonsLast()
    {
        FastEmulatorFixture fixture;
        fast::MountNewVolume dialog(fixture.client(), "1", {}, fixture.projectDir());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));

        // Which row is which axis: the mount body sends them the other way round.
        const auto text = [&dialog](int row) { return qobject_cast<QLabel*>(at(dialog, row, 0))->text(); };
        QCOMPARE(QStringList({text(0), text(3), text(6), text(9)}),
                 QStringList({"Filename", "In-line", "X-line", "Z"}));
        QTRY_COMPARE(QApplication::focusWidget(), at(dialog, 1, 0));
        QCOMPARE(button(dialog, 0)->text() + ' ' + button(dialog, 1)->text(), "Cancel Save");

        // A bound of the description that is not a number.
        QVERIFY_EXCEPTION_THROWN(fast::MountNewVolume(fixture.client(), "1", {"", "", "x", "", "", ""}, "p"),
                                 std::invalid_argument);
        QVERIFY_EXCEPTION_THROWN(fast::MountNewVolume(fixture.client(), "1", {"", "", "", "", "", "deep"}, "p"),
                                 std::invalid_argument);
    }

    void rowsStartOnTheWholeVolume_data()
    {
        QTest::addColumn<fast::SubvolumeRange>("range");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<bool>("german"); // C and Qt locales that write 1,5
        const QString whole = "0..1000000 [0,1000000] spins 0..1000000 [0,1000000]";
        QTest::newRow("no description values") << fast::SubvolumeRange{} << QStringList({whole, whole, whole}) << false;
        // Z keeps only the whole samples inside its bounds.
        QTest::newRow("bounds beyond the usual range")
            << fast::SubvolumeRange{"-5", "2000000", "", "", "", ""}
            << QStringList({"-5..2000000 [-5,2000000] spins -5..2000000 [-5,2000000]", whole, whole}) << false;
        const QStringList described{"10..1199 [10,1199] spins 10..1199 [10,1199]",
                                    "20..899 [20,899] spins 20..899 [20,899]", "1..99 [1,99] spins 1..99 [1,99]"};
        QTest::newRow("description values") << kVolume << described << false;
        QTest::newRow("description values, German host") << kVolume << described << true;
    }

    void rowsStartOnTheWholeVolume()
    {
        QFETCH(fast::SubvolumeRange, range);
        QFETCH(QStringList, rows);
        QFETCH(bool, german);
        QVERIFY2(!german || std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), "no de_DE.UTF-8 locale: ./dev test makes it");
        const auto restore = qScopeGuard([] {
            std::setlocale(LC_NUMERIC, "C");
            QLocale::setDefault(QLocale::system());
        });
        if (german)
            QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        FastEmulatorFixture fixture;
        fast::MountNewVolume dialog(fixture.client(), "1", range, fixture.projectDir());
        QCOMPARE(QStringList({axisState(dialog, 3), axisState(dialog, 6), axisState(dialog, 9)}), rows);
    }

    void emptyUnfitOrTakenNameStaysInTheDialog_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("label");
        QTest::newRow("empty") << QString() << QString("Filename");
        for (const char* unfit : {"  ", "a:b", "cube.", "LPT1.vds"})
            QTest::newRow(unfit) << unfit << "Invalid filename";
        // FAST's drive holds the earlier mount under the project's extension, as cube.kv.
        QTest::newRow("mounted before") << QString("cube") << QString("File already exists");
    }

    void emptyUnfitOrTakenNameStaysInTheDialog()
    {
        QFETCH(QString, name);
        QFETCH(QString, label);
        FastEmulatorFixture fixture;
        fixture.client()->mountFile(fixture.client()->registerVds("/b.vds")->getMessage(), "cube", "", 0, 1, 0, 1, 0,
                                    1);
        MountSession session(fixture);

        session.save(name);
        QCOMPARE(labelState(session.dialog), label + " QLabel { color : red; }");
        QCOMPARE(fileNameLabel(session.dialog)->toolTip().contains("cannot be blank, contain / \\ : * ? \" < > |"),
                 label == "Invalid filename");
        QVERIFY(session.dialog.isVisible());
        QCOMPARE(fixture.requestLines(), QStringList());

        QTest::keyClick(fileNameField(session.dialog), Qt::Key_2);
        QCOMPARE(labelState(session.dialog),
                 "Filename QLabel { color : " + QApplication::palette().color(QPalette::Text).name() + "; }");
    }

    void mountSendsTheRowsZFirstAndRenamesTheLink()
    {
        FastEmulatorFixture fixture;
        MountSession session(fixture);
        // Handles and spin boxes follow each other: the body carries the sliders' values.
        qobject_cast<QSpinBox*>(at(session.dialog, 4, 0))->setValue(150);
        qobject_cast<kvWidgets::DoubleSlider*>(at(session.dialog, 11, 0))->setUpperValue(90);
        QCOMPARE(axisState(session.dialog, 9), "1..99 [1,90] spins 1..99 [1,90]");
        // Typed over the selected maximum: no keystroke may be taken for a bound of its own.
        auto* upper = qobject_cast<QSpinBox*>(at(session.dialog, 4, 1));
        upper->setFocus();
        upper->selectAll();
        QTest::keyClicks(upper, "1000");
        // Enter in the name saves.
        QTest::keyClicks(fileNameField(session.dialog), "cube");
        QTest::keyClick(fileNameField(session.dialog), Qt::Key_Return);

        QTRY_COMPARE(session.finished.count(), 1);
        QCOMPARE(session.finished.at(0).at(0).toInt(), 1);
        QCOMPARE(axisState(session.dialog, 3), "10..1199 [150,1000] spins 10..1199 [150,1000]");
        QCOMPARE(session.mounted.count(), 1);
        const QVariantList mounted = session.mounted.at(0);
        QCOMPARE(QString::fromStdString(mounted.at(0).value<std::string>() + ' ' + mounted.at(1).value<std::string>()
                                        + ' ' + mounted.at(2).value<std::string>()),
                 QString::fromStdString(session.vdsId + ' ' + fixture.emulator().service().files().at(0).id + " cube"));
        QVERIFY(QFileInfo::exists(fixture.projectDir() + "/cube"));

        QCOMPARE(fixture.requestLines(), QStringList("POST /api/v2/file/"));
        const QString body = QString::fromStdString(fixture.emulator().requests().at(0).body);
        const QString linkPath = "\"link_path\":\"" + fixture.projectDir() + '"';
        // The Z row goes out first and the In-line row last.
        const QString subvolume = "\"subvolume\":{\"dim0\":{\"max\":90,\"min\":1},\"dim1\":{\"max\":899,\"min\":20},"
                                  "\"dim2\":{\"max\":1000,\"min\":150}}";
        QVERIFY2(body.contains(linkPath) && body.contains(subvolume), qPrintable(body));
    }

    void closingTheDialogDuringTheRenameEndsIt()
    {
        emulator::EmulatorOptions options;
        options.linkDelayMs = 60000;
        FastEmulatorFixture fixture(options);
        auto session = std::make_unique<MountSession>(fixture);
        session->save("cube");
        QVERIFY(!fast::waitForBackgroundWork(0)); // the rename waits for the link, for up to 10 s
        session.reset();
        QVERIFY(fast::waitForBackgroundWork(3000));
    }

    // The link's move waits only for a file that is missing or held; a refusal is not tried again.
    void linkMoveRetriesOnlyWhileTheFileIsHeld_data()
    {
        QTest::addColumn<int>("heldFor"); // attempts the file is held for; -1 for good
        QTest::addColumn<QString>("hindrance");
        QTest::newRow("held a while") << 3 << QString();
        QTest::newRow("held for good") << -1 << QString();
        QTest::newRow("another file under the target name") << 0 << "taken";
        QTest::newRow("no folder for the target") << 0 << "no folder";
    }

    void linkMoveRetriesOnlyWhileTheFileIsHeld()
    {
        QFETCH(int, heldFor);
        QFETCH(QString, hindrance);
        QTemporaryDir folder;
        const QString link = folder.filePath("cube.kv");
        const QString target = folder.filePath(hindrance == "no folder" ? "gone/cube" : "cube");
        QVERIFY(QFile(link).open(QIODevice::WriteOnly)
                && (hindrance != "taken" || QFile(target).open(QIODevice::WriteOnly)));
        int tries = 0;
        const auto heldThenReal = [&](const QString& source, const QString& to) {
            return heldFor < 0 || ++tries <= heldFor ? fast::MoveAttempt::NotYet : fast::moveFileOnce(source, to);
        };
        const bool moved = fast::moveFileWhenFree(link, target, std::chrono::milliseconds(heldFor < 0 ? 50 : 10000),
                                                  heldThenReal);
        QCOMPARE(moved, hindrance.isEmpty() && heldFor >= 0);
        QCOMPARE(QFile::exists(link), !moved);
        QCOMPARE(tries, heldFor + 1);
    }
};

QTEST_MAIN(MountDialogTest)
#include "tst_mountdialog.moc"
