// How the volume trees lay out their records, and how they follow mounts and unmounts. Qt's
// checker for item models watches every change as it happens (row counts, parents, the signals
// around inserts and removals).

#include "TreeDump.h"

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/VdsTreeModel.h>

#include <QAbstractItemModelTester>
#include <QtTest>

using fast::VdsFile;
using fast::VdsModel;

namespace {

VdsModel volume(const QString& name, const std::string& vdsId, const std::string& url, std::vector<VdsFile> files = {})
{
    return VdsModel({}, name, {}, {}, vdsId, url, std::move(files));
}

VdsModel dataset(const QString& id, const QString& name, const std::string& vdsId, std::vector<VdsFile> files = {})
{
    return VdsModel(id, name, "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0", "about " + name, vdsId,
                    "https://b/" + name.toStdString(), std::move(files));
}

template<typename Model>
struct Checked : Model
{
    QAbstractItemModelTester tester{this, QAbstractItemModelTester::FailureReportingMode::QtTest};
};

} // namespace

class TreeModelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void vdsRecordsAreLaidOutWithTheirRoles()
    {
        Checked<fast::VdsTreeModel> model;
        model.addVds(volume("bare", "", ""));
        model.addVds(volume("cube", "v1", "/d/cube.vds", {{"f1", "a"}, {"f2", "b"}}));
        model.populate();
        const QString expected = "bare(0,-1) | (0,-1) | (0,-1)*\n"
                                 "cube(1,-1) | (1,-1) | (1,-1)*\n"
                                 "  Files(1,-1) | (1,-1) | (1,-1)\n"
                                 "    a(1,0) | f1(1,0) | (1,0)*\n"
                                 "    b(1,1) | f2(1,1) | (1,1)*\n"
                                 "  Id(1,-1) | v1(1,-1) | (1,-1)\n"
                                 "  Path(1,-1) | /d/cube.vds(1,-1) | (1,-1)";
        QCOMPARE(dumpTree(model), expected);
        QVERIFY(!(model.item(0)->flags() & (Qt::ItemIsEditable | Qt::ItemIsSelectable)));

        // Rebuilding from the kept records gives the same tree; a record added since shows too.
        model.addVds(volume("late", "", "/d/late.vds"));
        model.clearRows();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.vdsCount(), 3);
        model.populate();
        QCOMPARE(dumpTree(model),
                 expected + "\nlate(2,-1) | (2,-1) | (2,-1)*\n  Path(2,-1) | /d/late.vds(2,-1) | (2,-1)");
    }

    void osduRecordsAreLaidOutWithTheirRoles()
    {
        Checked<fast::OsduTreeModel> model;
        model.addVds(dataset("r0", "north", ""));
        model.addVds(dataset("r1", "south", "v1", {{"f1", "a"}}));
        model.populate();
        model.populate(); // clears first
        QCOMPARE(dumpTree(model),
                 QString(
                     "north(0,-1) | about north(0,-1) | (0,-1)* | (0,-1)*\n"
                     "  Files(0,-1) | (0,-1) | (0,-1) | (0,-1)\n"
                     "  Id(0,-1) | r0(0,-1) | (0,-1) | (0,-1)\n"
                     "  Kind(0,-1) | osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0(0,-1) | (0,-1) | (0,-1)\n"
                     "south(1,-1) | about south(1,-1) | (1,-1)* | (1,-1)*\n"
                     "  Files(1,-1) | (1,-1) | (1,-1) | (1,-1)\n"
                     "    a(1,0) | f1(1,0) | (1,0)* | (1,-1)\n"
                     "  Id(1,-1) | r1(1,-1) | (1,-1) | (1,-1)\n"
                     "  Kind(1,-1) | osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0(1,-1) | (1,-1) | (1,-1)"));
    }

    void lookupsAreByIdAndIndexAndUrlAndUnmountRebuilds()
    {
        Checked<fast::VdsTreeModel> model;
        model.addVds(volume("one", "v1", "/d/1.vds"));
        model.addVds(volume("two", "v1", "/d/2.vds"));
        model.addVds(volume("three", "v3", "/d/3.vds", {{"f1", "a"}}));
        model.populate();
        QCOMPARE(model.findVds("v1")->name, "one");
        QVERIFY(!model.findVds("V1"));
        QVERIFY(!model.vdsAt(-1));
        QVERIFY(!model.vdsAt(model.vdsCount()));
        QCOMPARE(model.findVdsRowItem("/d/2.vds"), model.item(1));
        QVERIFY(!model.findVdsRowItem("/d/4.vds"));
        // The record goes, the rows stay until the next populate.
        model.removeVdsRecord("v1");
        QCOMPARE(model.vdsList().size(), 2);
        QCOMPARE(model.vdsList().first().name, "two");
        QCOMPARE(model.rowCount(), 3);

        model.vdsUnmounted("v1");
        model.vdsUnmounted("v9");
        QCOMPARE(model.vdsCount(), 1);
        QCOMPARE(dumpTree(model).split('\n').first(), "three(0,-1) | (0,-1) | (0,-1)*");
        QCOMPARE(model.rowCount(), 1);

        // Two records of one URL: neither is found by it, so neither gains a file row nor loses its rows.
        model.addVds(volume("same", "v4", "/d/3.vds"));
        model.populate();
        const QString before = dumpTree(model);
        QVERIFY(!model.findVdsRowItem("/d/3.vds"));
        model.addFile("v3", "f2", "b");
        model.vdsUnmounted("v4");
        QCOMPARE(dumpTree(model), before);
        QCOMPARE(model.vdsCount(), 2);
    }

    void filesComeAndGoWithoutDisturbingTheOtherRows()
    {
        Checked<fast::VdsTreeModel> model;
        model.addVds(volume("cube", "v1", "/d/cube.vds", {{"f1", "a"}}));
        model.addVds(volume("bare", "v2", "/d/bare.vds"));
        model.populate();
        model.addFile("v1", "f2", "b");
        model.addFile("v1", "f3", "c");
        model.addFile("v2", "f4", "d"); // makes the missing "Files" row
        model.addFile("nope", "f5", "e");
        model.removeFile("v1", {"f1", "a"});
        model.removeFile("v9", {"f2", "b"});
        // The remaining file rows keep their old file index until the next populate.
        QCOMPARE(dumpTree(model), QString("cube(0,-1) | (0,-1) | (0,-1)*\n"
                                          "  Files(0,-1) | (0,-1) | (0,-1)\n"
                                          "    b(0,1) | f2(0,1) | (0,1)*\n"
                                          "    c(0,2) | f3(0,2) | (0,2)*\n"
                                          "  Id(0,-1) | v1(0,-1) | (0,-1)\n"
                                          "  Path(0,-1) | /d/cube.vds(0,-1) | (0,-1)\n"
                                          "bare(1,-1) | (1,-1) | (1,-1)*\n"
                                          "  Files(1,-1) | (1,-1) | (1,-1)\n"
                                          "    d(1,0) | f4(1,0) | (1,0)*\n"
                                          "  Id(1,-1) | v2(1,-1) | (1,-1)\n"
                                          "  Path(1,-1) | /d/bare.vds(1,-1) | (1,-1)"));
        QCOMPARE(QString::fromStdString(model.findVds("v1")->files[0].fileId + model.findVds("v1")->files[1].fileId),
                 "f2f3");
        model.removeAllFiles("v1");
        QVERIFY(model.findVds("v1")->files.empty());
        QCOMPARE(model.item(0)->child(0)->text(), "Id");

        // An OSDU dataset has no "Path" row to be found by: the record learns the file, and the
        // next populate shows it.
        Checked<fast::OsduTreeModel> osduModel;
        osduModel.addVds(dataset("r0", "north", "v2"));
        osduModel.populate();
        const QString before = dumpTree(osduModel);
        osduModel.addFile("v2", "f9", "z");
        QCOMPARE(dumpTree(osduModel), before);
        osduModel.populate();
        QCOMPARE(dumpTree(osduModel).split('\n').at(2), "    z(0,0) | f9(0,0) | (0,0)* | (0,-1)");
    }
};

QTEST_MAIN(TreeModelsTest)
#include "tst_treemodels.moc"
