// Mouse events travel through the window, with button state and enter/leave, like real ones.
#define QTEST_QPA_MOUSE_HANDLING

#include <kvWidgets/DoubleSlider.h>
#include <kvWidgets/HeaderView.h>
#include <kvWidgets/HelpToolTip.h>
#include <kvWidgets/SortFilterProxyModel.h>

#include <QtTest>
#include <QtWidgets>

using kvWidgets::DoubleSlider;

namespace {

// Where the style puts the handle of a slider with this geometry for the given value.
QPoint handleCentre(const DoubleSlider& slider, int value)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.state |= QStyle::State_Horizontal;
    option.orientation = Qt::Horizontal;
    option.minimum = slider.minimum();
    option.maximum = slider.maximum();
    option.sliderPosition = option.sliderValue = value;
    return slider.style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
        .center();
}

using Range = QPair<int, int>; // lower, upper
using Ints = QList<int>;

void setUp(DoubleSlider& slider, Range range)
{
    slider.setMaximum(100);
    slider.setUpperValue(range.second);
    slider.setLowerValue(range.first);
    slider.resize(400, slider.sizeHint().height());
}

class FilterHeader : public kvWidgets::HeaderView
{
public:
    using HeaderView::HeaderView;
    QList<int> filled;
    QPointer<QLabel> label;
    void fillPopup(QVBoxLayout* layout, int logicalIndex) override
    {
        filled << logicalIndex;
        layout->addWidget(label = new QLabel(QString::number(logicalIndex)));
    }
};

struct Table
{
    QStandardItemModel model{2, 3};
    QTableView view;
    FilterHeader* header = new FilterHeader(Qt::Horizontal);
    Table()
    {
        view.setHorizontalHeader(header);
        view.setModel(&model);
        view.resize(500, 200);
        view.show();
    }
    QRect section(int logicalIndex) const
    {
        return QRect(header->sectionViewportPosition(logicalIndex), 0,
                     header->sectionSize(logicalIndex), header->viewport()->height());
    }
};

class PrefixProxy : public kvWidgets::SortFilterProxyModel
{
public:
    QString prefix;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        return sourceModel()->index(row, 0, parent).data().toString().startsWith(prefix);
    }
};

} // namespace

class TestKvWidgets : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        while (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
        QToolTip::hideText();
        QTRY_VERIFY(QToolTip::text().isEmpty());
    }

    void sliderHandlesFollowTheMouseWithoutCrossing_data()
    {
        QTest::addColumn<Range>("before");
        QTest::addColumn<int>("pressAt");
        QTest::addColumn<int>("moveTo");
        QTest::addColumn<Range>("after");
        QTest::newRow("lower to the minimum") << Range(20, 80) << 20 << 0 << Range(0, 80);
        QTest::newRow("lower stops at the upper") << Range(20, 80) << 20 << 100 << Range(80, 80);
        QTest::newRow("upper stops at the lower") << Range(20, 80) << 80 << 0 << Range(20, 20);
        QTest::newRow("upper to the middle") << Range(20, 80) << 80 << 50 << Range(20, 50);
        QTest::newRow("groove press, nearer upper") << Range(20, 80) << 70 << 70 << Range(20, 70);
        QTest::newRow("groove press, nearer lower") << Range(20, 80) << 35 << 35 << Range(35, 80);
        QTest::newRow("groove press then drag") << Range(20, 80) << 60 << 90 << Range(20, 90);
        QTest::newRow("stacked, drag left") << Range(50, 50) << 50 << 30 << Range(30, 50);
        QTest::newRow("stacked, drag right") << Range(50, 50) << 50 << 70 << Range(50, 70);
    }
    void sliderHandlesFollowTheMouseWithoutCrossing()
    {
        QFETCH(Range, before);
        QFETCH(int, pressAt);
        QFETCH(int, moveTo);
        DoubleSlider slider;
        setUp(slider, before);
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));

        QTest::mousePress(&slider, Qt::LeftButton, {}, handleCentre(slider, pressAt));
        QTest::mouseMove(&slider, handleCentre(slider, moveTo));
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, handleCentre(slider, moveTo));
        QTEST(Range(slider.lowerValue(), slider.upperValue()), "after");
    }

    void sliderKeysMoveTheLastPressedHandle_data()
    {
        QTest::addColumn<bool>("pressUpper");
        QTest::addColumn<QKeySequence>("keys");
        QTest::addColumn<Range>("after"); // from 20..80 on 0..100, in steps of 5
        QTest::newRow("lower up") << false << QKeySequence("Right, Up") << Range(30, 80);
        QTest::newRow("lower down") << false << QKeySequence("Left, Down") << Range(10, 80);
        QTest::newRow("lower ten steps") << false << QKeySequence("PgUp") << Range(70, 80);
        QTest::newRow("lower stops") << false << QKeySequence("PgUp, PgUp") << Range(80, 80);
        QTest::newRow("lower to minimum") << false << QKeySequence("Home") << Range(0, 80);
        QTest::newRow("lower to upper") << false << QKeySequence("End") << Range(80, 80);
        QTest::newRow("pressed upper down") << true << QKeySequence("Left") << Range(20, 75);
        QTest::newRow("upper ten steps") << true << QKeySequence("PgDown") << Range(20, 30);
        QTest::newRow("upper to lower") << true << QKeySequence("Home") << Range(20, 20);
        QTest::newRow("upper to maximum") << true << QKeySequence("End") << Range(20, 100);
    }
    void sliderKeysMoveTheLastPressedHandle()
    {
        QFETCH(bool, pressUpper);
        QFETCH(QKeySequence, keys);
        DoubleSlider slider;
        setUp(slider, Range(20, 80));
        slider.setSingleStep(5);
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));
        if (pressUpper)
            QTest::mouseClick(&slider, Qt::LeftButton, {}, handleCentre(slider, 80));

        QTest::keySequence(&slider, keys);
        QTEST(Range(slider.lowerValue(), slider.upperValue()), "after");
    }

    void sliderSignalsOnlyRealChanges()
    {
        DoubleSlider slider;
        setUp(slider, Range(20, 80));
        QSignalSpy lowerSpy(&slider, &DoubleSlider::lowerValueChanged);
        QSignalSpy upperSpy(&slider, &DoubleSlider::upperValueChanged);
        slider.setLowerValue(20);
        slider.setUpperValue(80);
        slider.setLowerValue(90); // stops at the upper handle
        slider.setLowerValue(95);
        QTest::keyClick(&slider, Qt::Key_End);
        slider.setUpperValue(10); // stops at the lower handle, where it already is
        QCOMPARE(lowerSpy.count(), 1);
        QCOMPARE(lowerSpy.first().first().toInt(), 80);
        QCOMPARE(upperSpy.count(), 0);
        QCOMPARE(slider.sizeHint(), QSlider(Qt::Horizontal).sizeHint());
    }

    void sliderRangeClampsBothValues_data()
    {
        QTest::addColumn<bool>("setsMinimum");
        QTest::addColumn<int>("bound");
        // minimum, maximum, lower, upper, then how often each value signalled
        QTest::addColumn<Ints>("after");
        QTest::newRow("minimum past lower") << true << 30 << Ints{30, 100, 30, 80, 1, 0};
        QTest::newRow("minimum past both") << true << 90 << Ints{90, 100, 90, 90, 1, 1};
        QTest::newRow("minimum past maximum") << true << 150 << Ints{150, 150, 150, 150, 1, 1};
        QTest::newRow("maximum below minimum") << false << -10 << Ints{-10, -10, -10, -10, 1, 1};
        QTest::newRow("maximum below upper") << false << 50 << Ints{0, 50, 20, 50, 0, 1};
    }
    void sliderRangeClampsBothValues()
    {
        QFETCH(bool, setsMinimum);
        QFETCH(int, bound);
        DoubleSlider slider;
        setUp(slider, Range(20, 80));
        QSignalSpy lowerSpy(&slider, &DoubleSlider::lowerValueChanged);
        QSignalSpy upperSpy(&slider, &DoubleSlider::upperValueChanged);
        if (setsMinimum)
            slider.setMinimum(bound);
        else
            slider.setMaximum(bound);
        QTEST((Ints{slider.minimum(), slider.maximum(), slider.lowerValue(), slider.upperValue(),
                    lowerSpy.count(), upperSpy.count()}),
              "after");
    }

    void headerOpensOnePopupUnderTheSection()
    {
        Table table;
        table.view.setSortingEnabled(true);
        QVERIFY(QTest::qWaitForWindowExposed(&table.view));
        FilterHeader* header = table.header;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, table.section(1).center());
        QCOMPARE(header->sortIndicatorSection(), 1); // a click beside the icon still sorts
        QVERIFY(!header->popupWidget());

        const QRect icon = header->getDrawingRect(table.section(2));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, icon.center());
        QPointer<QWidget> first = header->popupWidget();
        QVERIFY(first && first->isVisible());
        QCOMPARE(first->windowType(), Qt::Popup);
        QCOMPARE(header->filled, QList<int>{2});
        QVERIFY(first->isAncestorOf(header->label) && header->label->isVisible());
        QCOMPARE(header->sortIndicatorSection(), 1);

        header->showSortPopup(-1);
        header->showSortPopup(3);
        QCOMPARE(header->popupWidget(), first.data());

        header->showSortPopup(1);
        QTRY_VERIFY(first.isNull());
        QVERIFY(header->popupWidget() && header->popupWidget()->isVisible());
        QCOMPARE(header->filled, (QList<int>{2, 1}));
        QCOMPARE(header->popupWidget()->pos(),
                 header->viewport()->mapToGlobal(table.section(1).bottomLeft() + QPoint(0, 1)));
    }

    void headerHoverFollowsTheMouse()
    {
        Table table;
        QVERIFY(QTest::qWaitForWindowExposed(&table.view));
        FilterHeader* header = table.header;
        QCOMPARE(header->getHoverIndex(), -1);
        QTest::mouseMove(header->viewport(), table.section(0).center());
        QCOMPARE(header->getHoverIndex(), 0);
        QTest::mouseMove(header->viewport(), table.section(2).center());
        QCOMPARE(header->getHoverIndex(), 2);
        QTest::mouseMove(header->viewport(), QPoint(header->length() + 5, 5));
        QCOMPARE(header->getHoverIndex(), -1);
        QTest::mouseMove(table.view.viewport(), table.view.viewport()->rect().center());
        QTRY_COMPARE(header->getHoverIndex(), -1);
    }

    void headerIconSitsAtTheRightEndOfTheSection()
    {
        kvWidgets::HeaderView header(Qt::Horizontal);
        const int small = header.style()->pixelMetric(QStyle::PM_SmallIconSize);
        for (const QRect section :
             {QRect(0, 0, 120, 24), QRect(300, 5, 80, 40), QRect(9, 0, 16, 24)}) {
            const QRect icon = header.getDrawingRect(section);
            QVERIFY(!icon.isEmpty() && section.contains(icon));
            QCOMPARE(icon.width(), icon.height());
            QVERIFY(qAbs(icon.center().y() - section.center().y()) <= 1);
            QVERIFY(section.right() - icon.right() < qMin(icon.width(), 6));
            QCOMPARE(icon.width() == small, section.width() > 2 * small); // shrinks only to fit
        }
        QVERIFY(header.getDrawingRect(QRect(0, 0, 100, 4)).isEmpty());
    }

    void headerFilterPixmapsComeFromThePalette()
    {
        kvWidgets::HeaderView header(Qt::Horizontal);
        QPalette palette = header.palette();
        palette.setColor(QPalette::Highlight, QColor(10, 120, 230));
        header.setPalette(palette);
        const QImage plain = header.getFilterPixmap(false).toImage();
        const QImage highlighted = header.getFilterPixmap(true).toImage();
        QVERIFY(!plain.isNull() && plain != highlighted);
        const QPoint stem(plain.width() / 2, plain.height() * 10 / 16);
        QCOMPARE(highlighted.pixelColor(stem), QColor(10, 120, 230));
        QVERIFY(plain.pixelColor(stem).alpha() > 64 && plain.pixelColor(stem).alpha() < 255);

        palette.setColor(QPalette::Highlight, QColor(200, 30, 30));
        header.setPalette(palette);
        QCOMPARE(header.getFilterPixmap(true).toImage().pixelColor(stem), QColor(200, 30, 30));
    }

    void proxyInvalidateFilterPublicRerunsTheFilter()
    {
        QStandardItemModel source;
        for (const char* fruit : {"apple", "avocado", "banana"})
            source.appendRow(new QStandardItem(fruit));
        PrefixProxy proxy;
        proxy.prefix = "a";
        proxy.setSourceModel(&source);
        QCOMPARE(proxy.rowCount(), 2);
        proxy.prefix = "b";
        QCOMPARE(proxy.rowCount(), 2);
        proxy.invalidateFilterPublic();
        QCOMPARE(proxy.rowCount(), 1);
        QCOMPARE(proxy.index(0, 0).data().toString(), QString("banana"));
    }

    void helpTipShows_data()
    {
        QTest::addColumn<bool>("hover");
        QTest::addColumn<int>("key"); // 0: a click
        QTest::newRow("hovering") << true << 0;
        QTest::newRow("clicking") << false << 0;
        QTest::newRow("Space") << false << int(Qt::Key_Space);
        QTest::newRow("Return") << false << int(Qt::Key_Return);
        QTest::newRow("Enter") << false << int(Qt::Key_Enter);
    }
    void helpTipShows()
    {
        QFETCH(bool, hover);
        QFETCH(int, key);
        const QString text = "Press <b>Apply</b> to keep it";
        QWidget window;
        auto* edit = new QLineEdit(&window);
        QPixmap icon(16, 16);
        icon.fill(window.palette().color(QPalette::Text));
        auto* tip = new kvWidgets::HelpToolTip(icon, text, &window);
        auto* layout = new QHBoxLayout(&window);
        layout->addWidget(edit);
        layout->addWidget(tip);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(tip->text(), text);
        QCOMPARE(tip->accessibleName(), QString("Press Apply to keep it"));

        if (hover) {
            QTest::mouseMove(tip, tip->rect().center());
            QTRY_COMPARE(QToolTip::text(), text);
            return;
        }
        QTest::mouseMove(edit, edit->rect().center()); // off the icon: no hover tip meanwhile
        if (key == 0) {
            QTest::mouseClick(tip, Qt::LeftButton);
        } else {
            edit->setFocus();
            QTest::keyClick(edit, Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), tip);
            QTest::keyClick(tip, Qt::Key(key));
        }
        QCOMPARE(QToolTip::text(), text); // at once, not after the hover delay
    }
};

QTEST_MAIN(TestKvWidgets)
#include "tst_kvwidgets.moc"
