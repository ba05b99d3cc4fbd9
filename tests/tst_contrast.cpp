// The trees' action icons as drawn on a light and on a dark palette: hovered (fully opaque), at
// least half of each icon's drawn pixels must stand 3:1 or more against the row behind them, on
// plain and on striped rows.

#include "ContrastRatio.h"
#include "DarkPalette.h"
#include "TreeViewFixture.h"

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>

#include <QtTest>
#include <QtWidgets>

#include <cstdlib>

namespace {

fast::VdsModel dataset(const QString& name, const std::string& vdsId)
{
    return fast::VdsModel("r-" + name, name, "kind", "", vdsId, "/d/" + name.toStdString(), {});
}

// The share of the icon's pixels in cell (those that differ from the row's colour) that stand
// at least 3:1 against it.
double shareThatStandsOut(const QImage& shot, const QRect& cell, const QColor& row)
{
    int drawn = 0;
    int standing = 0;
    for (int y = cell.top(); y <= cell.bottom(); ++y) {
        for (int x = cell.left(); x <= cell.right(); ++x) {
            const QColor pixel = shot.pixelColor(x, y);
            if (std::abs(pixel.red() - row.red()) + std::abs(pixel.green() - row.green())
                    + std::abs(pixel.blue() - row.blue())
                < 12)
                continue;
            ++drawn;
            standing += contrastRatio(pixel, row) >= 3.0 ? 1 : 0;
        }
    }
    return drawn == 0 ? 0.0 : double(standing) / drawn;
}

} // namespace

class ContrastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create("Fusion")); }

    void hoveredIconsStandOutFromTheirRows_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light palette") << false;
        QTest::newRow("dark Fusion palette") << true;
    }

    void hoveredIconsStandOutFromTheirRows()
    {
        QFETCH(bool, dark);
        const QPalette original = QApplication::palette();
        QApplication::setPalette(dark ? darkFusionPalette() : QApplication::style()->standardPalette());

        // Known and unknown datasets on plain (even) and striped (odd) rows: every icon of the tree.
        fast::OsduTreeView view;
        view.setItemDelegate(new fast::OsduTreeDelegate(view.proxyModel(), &view));
        for (const auto& [name, id] : {std::pair{"a", "v1"}, {"b", "v2"}, {"c", ""}, {"d", ""}})
            view.model()->addVds(dataset(name, id));
        view.setConnectedToFast(true);
        view.refresh();
        showExpanded(view);
        view.collapseAll();

        const QList<std::tuple<int, int, QString>> icons = {
            {0, 2, "known, plain row"},     {1, 2, "known, striped row"}, {0, 3, "unmount, plain row"},
            {1, 3, "unmount, striped row"}, {2, 2, "mount, plain row"},   {3, 2, "mount, striped row"},
        };
        for (const auto& [row, column, what] : icons) {
            const QModelIndex cell = cellAt(view, {row}, column);
            // Straight to the viewport: a real pointer resting there would bring up the cell's tool tip.
            const QPoint at = centreOf(view, cell);
            QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                             Qt::NoModifier);
            QApplication::sendEvent(view.viewport(), &move);
            QCOMPARE(qobject_cast<fast::FastTreeDelegate*>(view.itemDelegate())->hoveredIndex(), cell);
            const QImage shot = view.viewport()->grab().toImage();
            const QColor background = QApplication::palette().color(row % 2 ? QPalette::AlternateBase : QPalette::Base);
            const double share = shareThatStandsOut(shot, view.visualRect(cell), background);
            QVERIFY2(share >= 0.5,
                     qPrintable(QString("%1: %2 % of the pixels at 3:1").arg(what).arg(share * 100, 0, 'f', 0)));
        }
        QApplication::setPalette(original);
    }
};

QTEST_MAIN(ContrastTest)
#include "tst_contrast.moc"
