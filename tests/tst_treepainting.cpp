// What the row delegates and the filter header draw, checked on rendered pixels, and the
// registration filter driven through its pop-up. The trees' action icons hovered (fully opaque),
// on a light and on a dark palette: at least half of each icon's drawn pixels must stand 3:1 or
// more against the row behind them, on plain and on striped rows.

#include "ContrastRatio.h"
#include "DarkPalette.h"
#include "TreeViewFixture.h"

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/FastHeaderView.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>
#include <fast/trees/TreeRoles.h>
#include <fast/trees/VdsTreeDelegate.h>
#include <fast/trees/VdsTreeModel.h>
#include <fast/trees/VdsTreeView.h>

#include <QtTest>
#include <QtWidgets>

#include <cstdlib>

namespace {

const QColor kPaper(255, 255, 255);

// The cell as the delegate paints it into a 40 x 30 rectangle on white.
QImage paintCell(const fast::FastTreeDelegate& delegate, const QModelIndex& index)
{
    QImage image(40, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(kPaper);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = image.rect();
    delegate.paint(&painter, option, index);
    return image;
}

// The icon as it should stand in that cell: centred, at the given opacity.
QImage expectedCell(const QString& resource, qreal opacity)
{
    QImage image(40, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(kPaper);
    if (!resource.isEmpty()) {
        QPainter painter(&image);
        painter.setOpacity(opacity);
        const QPixmap icon(resource);
        painter.drawPixmap(QPoint((40 - icon.width()) / 2, (30 - icon.height()) / 2), icon);
    }
    return image;
}

QImage blankCell()
{
    return expectedCell({}, 1);
}

QCheckBox* popupBox(fast::FastHeaderView& header, const QString& text)
{
    for (QCheckBox* box : header.popupWidget()->findChildren<QCheckBox*>()) {
        if (box->text() == text)
            return box;
    }
    return nullptr;
}

// Clicks where a person would: on the box's indicator (a click beside the text does nothing).
void clickBox(QCheckBox* box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    const QRect indicator = box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    QTest::mouseClick(box, Qt::LeftButton, {}, indicator.center());
}

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

class TreePaintingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void delegatesDrawTheIconCentredAndHalfOpaqueUnlessHovered()
    {
        fast::VdsTreeView vds;
        fast::VdsTreeDelegate delegate(vds.proxyModel());
        fast::OsduTreeView osdu;
        fast::OsduTreeDelegate osduDelegate(osdu.proxyModel());
        for (fast::FastTreeView* view : std::initializer_list<fast::FastTreeView*>{&vds, &osdu}) {
            view->model()->addVds(registeredVolume());
            view->model()->addVds(unregisteredVolume());
            view->setConnectedToFast(true);
            view->refresh();
        }

        const QModelIndex icon = cellAt(vds, {0}, 2);
        QCOMPARE(paintCell(delegate, icon), expectedCell(":/light/delete24.png", 0.5));
        delegate.setHoveredIndex(icon);
        QCOMPARE(paintCell(delegate, icon), expectedCell(":/light/delete24.png", 1.0));
        QCOMPARE(paintCell(delegate, cellAt(vds, {0, 0, 0}, 2)), expectedCell(":/light/delete24.png", 0.5));
        // The "Id" row's column 2 carries no action: blank, not even a background.
        QCOMPARE(paintCell(delegate, cellAt(vds, {0, 1}, 2)), blankCell());
        QStyleOptionViewItem option;
        QCOMPARE(delegate.sizeHint(option, icon), QSize(30, 30));
        QCOMPARE(delegate.sizeHint(option, cellAt(vds, {0}, 0)).height(), 30);

        // The OSDU tree shows the mount state, and unmount only for a registered dataset.
        QCOMPARE(paintCell(osduDelegate, cellAt(osdu, {0}, 2)), expectedCell(":/light/down_ko.png", 0.5));
        QCOMPARE(paintCell(osduDelegate, cellAt(osdu, {0}, 3)), expectedCell(":/light/delete24.png", 0.5));
        QCOMPARE(paintCell(osduDelegate, cellAt(osdu, {1}, 2)), expectedCell(":/light/down_ok.png", 0.5));
        QCOMPARE(paintCell(osduDelegate, cellAt(osdu, {1}, 3)), blankCell());
        QCOMPARE(paintCell(osduDelegate, cellAt(osdu, {0, 1}, 3)), blankCell());

        // Over a model that is not a volume tree, nothing at all, not even an action it carries.
        QStandardItemModel foreign(1, 4);
        foreign.setData(foreign.index(0, 0), "text");
        foreign.setData(foreign.index(0, 2), true, fast::ActionRole);
        QSortFilterProxyModel proxy;
        proxy.setSourceModel(&foreign);
        for (int column : {0, 2}) {
            QCOMPARE(paintCell(fast::VdsTreeDelegate(&proxy), proxy.index(0, column)), blankCell());
            QCOMPARE(paintCell(fast::OsduTreeDelegate(&proxy), proxy.index(0, column)), blankCell());
        }
    }

    void popupChoicesDriveTheFilterAndAllFollowsThem()
    {
        fast::OsduTreeView view;
        view.model()->addVds(registeredVolume());
        view.model()->addVds(unregisteredVolume());
        view.setConnectedToFast(true);
        view.refresh();
        showExpanded(view);
        const QAbstractItemModelTester proxyCheck(view.proxyModel(),
                                                  QAbstractItemModelTester::FailureReportingMode::QtTest);
        auto& header = static_cast<fast::FastHeaderView&>(*view.header());
        QSignalSpy filtered(&header, &fast::FastHeaderView::filterColumns);

        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(10, header.height() / 2));
        QVERIFY(header.popupWidget());
        QCOMPARE(header.popupWidget()->findChildren<QCheckBox*>().size(), 3);
        QCOMPARE(qobject_cast<QCheckBox*>(header.popupWidget()->layout()->itemAt(0)->widget())->text(), "All");
        QCheckBox* all = popupBox(header, "All");
        QCheckBox* registered = popupBox(header, "Registered");
        QCOMPARE(all->checkState(), Qt::Checked);

        clickBox(registered);
        fast::FastSortFilterProxyModel& proxy = *view.proxyModel();
        QCOMPARE(proxy.filterStates().value("Registered"), int(Qt::Unchecked));
        QCOMPARE(proxy.rowCount(), 1);
        QCOMPARE(proxy.index(0, 0).data().toString(), "fresh");
        QCOMPARE(proxy.rowCount(proxy.index(0, 0)), 3); // its children come along
        QCOMPARE(all->checkState(), Qt::PartiallyChecked);
        QCOMPARE(filtered.size(), 1);
        QVERIFY(header.isFilterActive(0));

        clickBox(all);
        QCOMPARE(all->checkState(), Qt::Checked);
        QCOMPARE(registered->checkState(), Qt::Checked);
        QCOMPARE(proxy.rowCount(), 2);
        QVERIFY(!header.isFilterActive(0));

        clickBox(popupBox(header, "Unregistered"));
        QCOMPARE(proxy.rowCount(), 1);
        QCOMPARE(proxy.index(0, 0).data().toString(), "cube");
        QCOMPARE(proxy.rowCount(proxy.index(0, 0)), view.model()->rowCount(view.model()->index(0, 0)));
        clickBox(all);
        clickBox(all);
        QCOMPARE(popupBox(header, "Unregistered")->checkState(), Qt::Unchecked);
        QCOMPARE(proxy.rowCount(), 0);

        // The VDS tree offers no filter: a click on its header opens nothing.
        fast::VdsTreeView vdsView;
        showExpanded(vdsView);
        auto& vdsHeader = static_cast<fast::FastHeaderView&>(*vdsView.header());
        QTest::mouseClick(vdsHeader.viewport(), Qt::LeftButton, {}, QPoint(10, vdsHeader.height() / 2));
        QVERIFY(!vdsHeader.popupWidget());

        // Over a model that is not a volume tree, nothing passes.
        QStandardItemModel plain(2, 1);
        fast::FastSortFilterProxyModel other;
        other.setSourceModel(&plain);
        QCOMPARE(other.rowCount(), 0);
    }

    void filterIconIsHighlightedWhileAnythingIsHidden()
    {
        fast::OsduTreeView view;
        view.setConnectedToFast(true);
        showExpanded(view);
        auto& header = static_cast<fast::FastHeaderView&>(*view.header());
        const QRect iconRect = header.getDrawingRect(
            QRect(header.sectionViewportPosition(0), 0, header.sectionSize(0), header.height()));
        const auto drawnIcon = [&] { return header.viewport()->grab().toImage().copy(iconRect); };
        // Hovering highlights too: start with the mouse elsewhere.
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(header.viewport(), &leave);
        QCOMPARE(header.getHoverIndex(), -1);

        const QImage plain = drawnIcon();
        view.proxyModel()->setFilterState("Unregistered", Qt::Unchecked);
        header.viewport()->update();
        QTRY_VERIFY(drawnIcon() != plain);
        view.proxyModel()->setFilterState("Unregistered", Qt::Checked);
        header.viewport()->update();
        QTRY_COMPARE(drawnIcon(), plain);
    }

    void hoveredIconsStandOutFromTheirRows_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<bool>("onDockAlone");
        QTest::newRow("light palette") << false << false;
        QTest::newRow("dark Fusion palette") << true << false;
        QTest::newRow("dark palette on the dock alone") << true << true;
    }

    void hoveredIconsStandOutFromTheirRows()
    {
        QFETCH(bool, dark);
        QFETCH(bool, onDockAlone);
        // Last of the cases: the style stays.
        QApplication::setStyle(QStyleFactory::create("Fusion"));
        const QPalette original = QApplication::palette();
        const QPalette rows = dark ? darkFusionPalette() : QApplication::style()->standardPalette();
        QApplication::setPalette(onDockAlone ? QApplication::style()->standardPalette() : rows);
        QWidget dock;
        dock.setPalette(rows);
        dock.show();

        // Known and unknown datasets on plain (even) and striped (odd) rows: every icon of the tree.
        fast::OsduTreeView view(&dock);
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
            const QColor& background = rows.color(row % 2 ? QPalette::AlternateBase : QPalette::Base);
            QCOMPARE(shot.pixelColor(view.visualRect(cell).topLeft()), background);
            const double share = shareThatStandsOut(shot, view.visualRect(cell), background);
            QVERIFY2(share >= 0.5,
                     qPrintable(QString("%1: %2 % of the pixels at 3:1").arg(what).arg(share * 100, 0, 'f', 0)));
        }
        QApplication::setPalette(original);
    }
};

QTEST_MAIN(TreePaintingTest)
#include "tst_treepainting.moc"
