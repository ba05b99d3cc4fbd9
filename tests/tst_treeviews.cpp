// Clicks, hover and connection state of the volume trees, on real widgets.

#include "TreeViewFixture.h"

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>
#include <fast/trees/VdsTreeDelegate.h>
#include <fast/trees/VdsTreeModel.h>
#include <fast/trees/VdsTreeView.h>

#include <QtTest>
#include <QtWidgets>

namespace {

// What the view's three signals carried, as text.
struct SignalLog
{
    explicit SignalLog(fast::FastTreeView& view)
    {
        QObject::connect(&view, &fast::FastTreeView::mountVds, &view,
                         [this](const fast::VdsModel& vds) { calls << "mount " + vds.name; });
        QObject::connect(&view, qOverload<std::string, std::vector<fast::VdsFile>>(&fast::FastTreeView::unmountVds),
                         &view, [this](const std::string& vdsId, const std::vector<fast::VdsFile>& files) {
                             calls << QString("unmount %1 with %2 files")
                                          .arg(QString::fromStdString(vdsId))
                                          .arg(files.size());
                         });
        QObject::connect(&view, &fast::FastTreeView::deleteFile, &view,
                         [this](const std::string& vdsId, fast::VdsFile& file) {
                             calls << QString::fromStdString("delete " + file.fileId + " of " + vdsId);
                         });
    }
    QStringList calls;
};

template<typename View, typename Delegate>
void prepare(View& view)
{
    view.setItemDelegate(new Delegate(view.proxyModel(), &view));
    view.model()->addVds(registeredVolume());
    view.model()->addVds(unregisteredVolume());
    view.setConnectedToFast(true);
    view.refresh();
    showExpanded(view);
}

void click(fast::FastTreeView& view, std::initializer_list<int> path, int column,
           Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(view.viewport(), button, {}, centreOf(view, cellAt(view, path, column)));
}

// The key pressed on the row at path, which the tree makes current first.
void press(fast::FastTreeView& view, std::initializer_list<int> path, Qt::Key key)
{
    view.setCurrentIndex(cellAt(view, path, 0));
    QTest::keyClick(&view, key);
}

// The tool tip the view shows over the cell, empty when it shows none.
QString toolTipOver(fast::FastTreeView& view, std::initializer_list<int> path, int column)
{
    // A tip fades out a moment after it is told to hide.
    QToolTip::hideText();
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }))
        return "a tip that stays";
    const QPoint at = centreOf(view, cellAt(view, path, column));
    QHelpEvent event(QEvent::ToolTip, at, view.viewport()->mapToGlobal(at));
    QApplication::sendEvent(view.viewport(), &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

} // namespace

class TreeViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void vdsIconsUnmountVolumesAndDeleteFiles()
    {
        fast::VdsTreeView view;
        prepare<fast::VdsTreeView, fast::VdsTreeDelegate>(view);
        SignalLog log(view);

        click(view, {0}, 2);
        click(view, {0, 0, 1}, 2); // file "b" under "Files"
        click(view, {1}, 2);       // no FAST id: nothing
        click(view, {0}, 1);       // same row, not the icon
        click(view, {0, 0, 0}, 2, Qt::RightButton);
        click(view, {0, 1}, 2); // the "Id" row has no icon
        // Delete is the row's unmount or delete icon, Enter and Return its mount icon: never the
        // other way round, and nothing on a row without that icon.
        press(view, {0}, Qt::Key_Return);
        press(view, {0}, Qt::Key_Delete);
        press(view, {0, 0, 1}, Qt::Key_Enter);
        press(view, {0, 0, 1}, Qt::Key_Delete);
        press(view, {1}, Qt::Key_Delete);    // no FAST id
        press(view, {0, 1}, Qt::Key_Delete); // the "Id" row
        const QStringList once = {"unmount v1 with 2 files", "delete f2 of v1"};
        QCOMPARE(log.calls, once + once);
    }

    void osduIconsMountAndUnmount()
    {
        fast::OsduTreeView view;
        prepare<fast::OsduTreeView, fast::OsduTreeDelegate>(view);
        SignalLog log(view);

        click(view, {0}, 2); // mounting is offered whatever the state
        click(view, {1}, 2);
        click(view, {0}, 3);
        click(view, {1}, 3);       // not registered: nothing to unmount
        click(view, {0, 0, 0}, 2); // a file row's icon sits in the mount column
        click(view, {0, 0, 0}, 3);
        click(view, {0}, 2, Qt::MiddleButton);
        press(view, {0}, Qt::Key_Return);
        press(view, {1}, Qt::Key_Enter);
        press(view, {0}, Qt::Key_Delete);
        press(view, {1}, Qt::Key_Delete);
        press(view, {0, 0, 0}, Qt::Key_Delete); // a file row's only icon is in the mount column
        press(view, {0, 0, 0}, Qt::Key_Return);
        const QStringList once = {"mount cube", "mount fresh", "unmount v1 with 2 files", "mount cube"};
        QCOMPARE(log.calls, once + once);

        // The arrows still move through the rows.
        press(view, {0}, Qt::Key_Down);
        QCOMPARE(view.currentIndex(), cellAt(view, {0, 0}, 0));
    }

    void iconsAndCutNamesSayWhatTheyAre()
    {
        fast::OsduTreeView osdu;
        prepare<fast::OsduTreeView, fast::OsduTreeDelegate>(osdu);
        const QList<std::pair<QModelIndex, QString>> osduCells = {
            {cellAt(osdu, {0}, 2), "Mount cube"},       {cellAt(osdu, {0}, 3), "Unmount cube"},
            {cellAt(osdu, {1}, 2), "Mount fresh"},      {cellAt(osdu, {1}, 3), QString()},
            {cellAt(osdu, {0, 0, 0}, 2), "Mount cube"},
        };
        fast::VdsTreeView vds;
        prepare<fast::VdsTreeView, fast::VdsTreeDelegate>(vds);
        vds.model()->addFile("v1", "f3", "north-sea-shallow"); // mounted now: its row is added alone
        const QList<std::pair<QModelIndex, QString>> vdsCells = {
            {cellAt(vds, {0, 0, 2}, 2), "Delete file north-sea-shallow"},
            {cellAt(vds, {0}, 2), "Unmount cube"},
            {cellAt(vds, {0, 0, 1}, 2), "Delete file b"},
            {cellAt(vds, {1}, 2), QString()},
        };
        for (const auto& [cell, text] : osduCells + vdsCells) {
            QCOMPARE(cell.data(Qt::ToolTipRole).toString(), text);
            QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), text);
        }
        QCOMPARE(toolTipOver(osdu, {0}, 3), QString("Unmount cube"));

        // Filled, the name column fits the deepest name; cut short, a name shows whole as a tip.
        const QString longName = "a-file-name-long-enough-to-need-room.vds";
        vds.model()->addVds(
            fast::VdsModel("", "short", "", "", "v9", "/d/short.vds", {{"f9", longName.toStdString()}}));
        vds.refresh();
        vds.expandAll();
        QCOMPARE(toolTipOver(vds, {2, 0, 0}, 0), QString());
        vds.header()->resizeSection(0, 60);
        QCOMPARE(toolTipOver(vds, {2, 0, 0}, 0), longName);
        QCOMPARE(toolTipOver(vds, {2, 1}, 0), QString()); // "Id" fits

        // Hover follows the mouse and clears when it leaves.
        auto* delegate = qobject_cast<fast::FastTreeDelegate*>(vds.itemDelegate());
        const QPoint at = centreOf(vds, cellAt(vds, {0}, 2));
        QMouseEvent move(QEvent::MouseMove, at, vds.viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(vds.viewport(), &move);
        QCOMPARE(delegate->hoveredIndex(), cellAt(vds, {0}, 2));
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(vds.viewport(), &leave);
        QVERIFY(!delegate->hoveredIndex().isValid());
    }

    void disconnectingHidesIconsAndKeepsRecords()
    {
        fast::OsduTreeView view;
        prepare<fast::OsduTreeView, fast::OsduTreeDelegate>(view);
        QVERIFY(view.isEnabled());
        QVERIFY(!view.header()->isSectionHidden(3));

        view.setConnectedToFast(false);
        QVERIFY(!view.isEnabled());
        QVERIFY(view.header()->isSectionHidden(2) && view.header()->isSectionHidden(3));
        QCOMPARE(view.header()->sectionResizeMode(1), QHeaderView::Stretch);
        QCOMPARE(view.model()->rowCount(), 0);
        QCOMPARE(view.model()->vdsCount(), 2);

        view.setConnectedToFast(true);
        view.refresh();
        QCOMPARE(view.model()->rowCount(), 2);
        QVERIFY(!view.header()->isSectionHidden(2));

        // A fresh view starts disconnected.
        fast::VdsTreeView fresh;
        QVERIFY(!fresh.isEnabled());
        QVERIFY(fresh.header()->isSectionHidden(2));
    }

    void childrenTakeTheirParentsStripe()
    {
        QPalette palette = QApplication::palette();
        palette.setColor(QPalette::Base, QColor(250, 250, 250));
        palette.setColor(QPalette::AlternateBase, QColor(200, 220, 240));
        QApplication::setPalette(palette);

        fast::VdsTreeView view;
        prepare<fast::VdsTreeView, fast::VdsTreeDelegate>(view);

        const QImage image = view.viewport()->grab().toImage();
        // Sample column 1 near its right end, where no text is drawn.
        const auto background = [&](std::initializer_list<int> path) {
            const QRect cell = view.visualRect(cellAt(view, path, 1));
            return QColor(image.pixel(cell.right() - 3, cell.center().y()));
        };
        const QColor plain = palette.color(QPalette::Base), striped = palette.color(QPalette::AlternateBase);
        // "Id" is row 1 of the even row 0, "Path" row 0 of the odd row 1; a file takes the stripe of
        // its "Files" row, row 0.
        QCOMPARE(QList<QColor>(
                     {background({0}), background({0, 1}), background({0, 0, 1}), background({1}), background({1, 0})}),
                 QList<QColor>({plain, plain, plain, striped, striped}));
    }
};

QTEST_MAIN(TreeViewsTest)
#include "tst_treeviews.moc"
