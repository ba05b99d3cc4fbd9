// Mouse events travel through the window, with button state and enter/leave, like real ones.
#define QTEST_QPA_MOUSE_HANDLING

#include <kvWidgets/DoubleSlider.h>
#include <kvWidgets/HeaderView.h>
#include <kvWidgets/HelpToolTip.h>

#include <QtTest>
#include <QtWidgets>

using kvWidgets::DoubleSlider;
using Range = QPair<int, int>; // lower, upper
using Ints = QList<int>;
using Setter = void (DoubleSlider::*)(int);
Q_DECLARE_METATYPE(Setter)

namespace {

// Where the style puts the handle for this value, so presses land where a user would aim.
QPoint handleCentre(const DoubleSlider& slider, int value)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.state |= QStyle::State_Horizontal;
    option.maximum = slider.maximum();
    option.sliderPosition = option.sliderValue = value;
    return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider).center();
}

// On 0..100 in steps of 5, wide enough that every value has a handle position of its own.
bool show(DoubleSlider& slider, Range range)
{
    slider.setMaximum(100);
    slider.setUpperValue(range.second);
    slider.setLowerValue(range.first);
    slider.setSingleStep(5);
    slider.resize(400, slider.sizeHint().height());
    slider.show();
    return QTest::qWaitForWindowExposed(&slider);
}

// Every filter reports itself active, so every section that has one keeps its icon drawn.
struct FilterHeader : kvWidgets::HeaderView
{
    using HeaderView::HeaderView;
    bool filters = true;
    Ints filled;
    QPointer<QLabel> label;
    void fillPopup(QVBoxLayout* layout, int section) override
    {
        filled << section;
        layout->addWidget(label = new QLabel("filter"));
    }
    bool isFilterActive(int) override { return true; }
    bool hasFilter(int) const override { return filters; }
};

struct Table
{
    QStandardItemModel model{2, 3};
    QTableView view;
    FilterHeader* header = new FilterHeader(Qt::Horizontal);
    explicit Table(bool filters = true)
    {
        header->filters = filters;
        view.setHorizontalHeader(header);
        view.setModel(&model);
        view.resize(500, 200);
        view.show();
    }
    QRect section(int i) const
    {
        return {header->sectionViewportPosition(i), 0, header->sectionSize(i), header->viewport()->height()};
    }
};

} // namespace

class KvWidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QToolTip::hideText();
        QTRY_VERIFY(QToolTip::text().isEmpty());
    }

    void sliderFollowsMouseAndKeysWithoutCrossing_data()
    {
        QTest::addColumn<Range>("before");
        QTest::addColumn<int>("pressAt"); // -1: no press
        QTest::addColumn<int>("moveTo");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<Range>("after");
        const Range r(20, 80), stacked(50, 50);
        QTest::newRow("drag lower to the minimum") << r << 20 << 0 << "" << Range(0, 80);
        QTest::newRow("drag lower onto the upper") << r << 20 << 100 << "" << Range(80, 80);
        QTest::newRow("drag upper onto the lower") << r << 80 << 0 << "" << Range(20, 20);
        QTest::newRow("groove press, nearer lower") << r << 35 << 35 << "" << Range(35, 80);
        QTest::newRow("groove press, nearer upper, then drag") << r << 60 << 90 << "" << Range(20, 90);
        QTest::newRow("stacked, drag left") << stacked << 50 << 30 << "" << Range(30, 50);
        QTest::newRow("stacked, drag right") << stacked << 50 << 70 << "" << Range(50, 70);
        QTest::newRow("lower up") << r << -1 << -1 << "Right, Up" << Range(30, 80);
        QTest::newRow("lower down") << r << -1 << -1 << "Left, Down" << Range(10, 80);
        QTest::newRow("lower ten steps") << r << -1 << -1 << "PgUp" << Range(70, 80);
        QTest::newRow("lower to minimum") << r << -1 << -1 << "Home" << Range(0, 80);
        QTest::newRow("lower stops at upper") << r << -1 << -1 << "End" << Range(80, 80);
        QTest::newRow("pressed upper down") << r << 80 << 80 << "Left" << Range(20, 75);
        QTest::newRow("upper ten steps") << r << 80 << 80 << "PgDown" << Range(20, 30);
        QTest::newRow("upper stops at lower") << r << 80 << 80 << "Home" << Range(20, 20);
        QTest::newRow("upper to maximum") << r << 80 << 80 << "End" << Range(20, 100);
    }
    void sliderFollowsMouseAndKeysWithoutCrossing()
    {
        QFETCH(Range, before);
        QFETCH(int, pressAt);
        QFETCH(int, moveTo);
        QFETCH(QString, keys);
        DoubleSlider slider;
        QVERIFY(show(slider, before));
        if (pressAt >= 0) {
            QTest::mousePress(&slider, Qt::LeftButton, {}, handleCentre(slider, pressAt));
            QTest::mouseMove(&slider, handleCentre(slider, moveTo));
            QTest::mouseRelease(&slider, Qt::LeftButton, {}, handleCentre(slider, moveTo));
        }
        QTest::keySequence(&slider, QKeySequence(keys));
        QTEST(Range(slider.lowerValue(), slider.upperValue()), "after");
    }

    void sliderClampsAndSignalsOnlyRealChanges_data()
    {
        QTest::addColumn<Range>("before");
        QTest::addColumn<Setter>("call");
        QTest::addColumn<int>("argument");
        QTest::addColumn<Ints>("after"); // minimum, maximum, lower, upper, lower and upper signals
        const Range r(20, 80), stacked(80, 80);
        const Setter lower = &DoubleSlider::setLowerValue, upper = &DoubleSlider::setUpperValue;
        const Setter min = &DoubleSlider::setMinimum, max = &DoubleSlider::setMaximum;
        QTest::newRow("lower stops at upper") << r << lower << 90 << Ints{0, 100, 80, 80, 1, 0};
        QTest::newRow("lower already at upper") << stacked << lower << 95 << Ints{0, 100, 80, 80, 0, 0};
        QTest::newRow("upper already at lower") << stacked << upper << 10 << Ints{0, 100, 80, 80, 0, 0};
        QTest::newRow("minimum past lower") << r << min << 30 << Ints{30, 100, 30, 80, 1, 0};
        QTest::newRow("minimum past both") << r << min << 90 << Ints{90, 100, 90, 90, 1, 1};
        QTest::newRow("minimum past maximum") << r << min << 150 << Ints{150, 150, 150, 150, 1, 1};
        QTest::newRow("maximum below minimum") << r << max << -10 << Ints{-10, -10, -10, -10, 1, 1};
        QTest::newRow("maximum below upper") << r << max << 50 << Ints{0, 50, 20, 50, 0, 1};
    }
    void sliderClampsAndSignalsOnlyRealChanges()
    {
        QFETCH(Range, before);
        QFETCH(Setter, call);
        QFETCH(int, argument);
        DoubleSlider slider;
        QVERIFY(show(slider, before));
        QSignalSpy lower(&slider, &DoubleSlider::lowerValueChanged);
        QSignalSpy upper(&slider, &DoubleSlider::upperValueChanged);
        (slider.*call)(argument);
        const Ints range{slider.minimum(), slider.maximum(), slider.lowerValue(), slider.upperValue()};
        QTEST((range + Ints{int(lower.count()), int(upper.count())}), "after");
        QVERIFY(lower.isEmpty() || lower.last().first().toInt() == slider.lowerValue());
        QVERIFY(upper.isEmpty() || upper.last().first().toInt() == slider.upperValue());
    }

    void headerIconOpensOnePopupUnderItsSection_data()
    {
        QTest::addColumn<bool>("filters");
        QTest::newRow("section with a filter") << true;
        QTest::newRow("section opted out") << false;
    }
    void headerIconOpensOnePopupUnderItsSection()
    {
        QFETCH(bool, filters);
        Table table(filters);
        FilterHeader* header = table.header;
        QPalette palette = header->palette();
        palette.setColor(QPalette::Highlight, Qt::magenta);
        header->setPalette(palette);
        table.view.setSortingEnabled(true);
        QVERIFY(QTest::qWaitForWindowExposed(&table.view));
        // Hover follows the mouse over the sections and clears beside them and on leaving.
        for (int section : {0, 2, -1, 1}) {
            const QPoint at = section < 0 ? QPoint(header->length() + 5, 5) : table.section(section).center();
            QTest::mouseMove(header->viewport(), at);
            QCOMPARE(header->getHoverIndex(), section);
        }
        QTest::mouseMove(table.view.viewport(), table.view.viewport()->rect().center());
        QTRY_COMPARE(header->getHoverIndex(), -1);

        const QRect icon = header->getDrawingRect(table.section(2));
        const QImage drawn = header->viewport()->grab(icon).toImage().convertToFormat(QImage::Format_RGB32);
        const auto* pixels = reinterpret_cast<const QRgb*>(drawn.constBits());
        const QRgb* end = pixels + static_cast<std::ptrdiff_t>(drawn.width()) * drawn.height();
        QCOMPARE(std::count(pixels, end, qRgb(255, 0, 255)) > 0, filters);

        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, table.section(1).center());
        QCOMPARE(header->sortIndicatorSection(), 1); // a click beside the icon still sorts
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, icon.center());
        QCOMPARE(header->sortIndicatorSection(), filters ? 1 : 2);
        QCOMPARE(header->filled, filters ? Ints{2} : Ints{});
        QPointer<QWidget> first = header->popupWidget();
        QCOMPARE(bool(first), filters);
        if (!filters)
            return;
        QVERIFY(first->isVisible() && first->windowType() == Qt::Popup);
        QVERIFY(first->isAncestorOf(header->label) && header->label->isVisible());

        header->showSortPopup(-1);
        header->showSortPopup(3);
        QCOMPARE(header->popupWidget(), first.data());
        header->showSortPopup(1);
        QTRY_VERIFY(first.isNull());
        QVERIFY(header->popupWidget() && header->popupWidget()->isVisible());
        QCOMPARE(header->filled, (Ints{2, 1}));
        QCOMPARE(header->popupWidget()->pos(),
                 header->viewport()->mapToGlobal(table.section(1).bottomLeft() + QPoint(0, 1)));
    }

    void helpTipShowsByMouseAndKeyboard()
    {
        const QString text = "Press <b>Apply</b> to keep it";
        QWidget window;
        QPixmap icon(16, 16);
        icon.fill(Qt::black);
        auto* edit = new QLineEdit;
        auto* tip = new kvWidgets::HelpToolTip(icon, text);
        auto* layout = new QHBoxLayout(&window);
        layout->addWidget(edit);
        layout->addWidget(tip);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(tip->accessibleName(), QString("Press Apply to keep it"));
        QTest::mouseMove(tip, tip->rect().center());
        QTRY_COMPARE(QToolTip::text(), text);

        QTest::mouseMove(edit, edit->rect().center()); // off the icon: no hover tip meanwhile
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), tip);
        // Each shows the tip at once, not after the hover delay.
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            cleanup();
            QTest::keyClick(tip, key);
            QVERIFY2(QToolTip::text() == text, qPrintable(QKeySequence(key).toString()));
        }
        cleanup(); // the click last, since it leaves the mouse on the icon
        QTest::mouseClick(tip, Qt::LeftButton);
        QCOMPARE(QToolTip::text(), text);
    }
};

QTEST_MAIN(KvWidgetsTest)
#include "tst_kvwidgets.moc"
