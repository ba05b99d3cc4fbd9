// widget-gallery: renders the widget kit and the volume trees headless into one picture, so
// that anyone can see the icons, the striping and the filter as a person would.
//
//   widget-gallery OUTPUT.png

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/FastHeaderView.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>
#include <fast/trees/VdsTreeDelegate.h>
#include <fast/trees/VdsTreeModel.h>
#include <fast/trees/VdsTreeView.h>
#include <korvane/IconXPMHandler.h>
#include <kvWidgets/DoubleSlider.h>
#include <kvWidgets/HelpToolTip.h>

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <cstdio>

namespace {

fast::VdsModel volume(const QString& name, const std::string& vdsId, std::vector<fast::VdsFile> files)
{
    return fast::VdsModel("opendes:dataset--FileCollection.Bluware.OpenVDS:" + name, name,
                          "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0", "Survey " + name, vdsId,
                          "/data/" + name.toStdString() + ".vds", std::move(files));
}

template<typename View, typename Delegate>
View* makeTree(bool connected, QWidget* parent)
{
    auto* view = new View(parent);
    view->setItemDelegate(new Delegate(view->proxyModel(), view));
    view->model()->addVds(volume("north-sea", "4f1c", {{"a1", "north-sea-top"}, {"a2", "north-sea-base"}}));
    view->model()->addVds(volume("gulf", "", {}));
    view->model()->addVds(volume("barents", "9b2e", {{"b1", "barents-full"}}));
    view->setConnectedToFast(connected);
    if (connected)
        view->refresh();
    view->expandAll();
    view->setMinimumSize(420, 300);
    return view;
}

QWidget* captioned(const QString& caption, QWidget* content, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(new QLabel("<b>" + caption + "</b>", box));
    content->setParent(box);
    layout->addWidget(content);
    return box;
}

QWidget* kitRow(QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* layout = new QGridLayout(row);
    layout->addWidget(new QLabel("Help tool tip", row), 0, 0);
    layout->addWidget(new kvWidgets::HelpToolTip(*iconHandler->getPixmap("help24"), "<b>Help</b> in rich text", row), 0,
                      1);
    layout->addWidget(new QLabel("Double slider", row), 1, 0);
    auto* slider = new kvWidgets::DoubleSlider(row);
    slider->setMaximum(1000);
    slider->setLowerValue(250);
    slider->setUpperValue(700);
    slider->setMinimumWidth(300);
    layout->addWidget(slider, 1, 1);
    return row;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: widget-gallery OUTPUT.png\n");
        return 2;
    }

    QWidget window;
    window.setWindowTitle("FAST panel widgets");
    auto* grid = new QGridLayout(&window);
    grid->addWidget(captioned("Widget kit", kitRow(&window), &window), 0, 0, 1, 2);
    // The OSDU trees go above the VDS trees, so that the pop-up opens downwards on the small
    // offscreen screen.
    grid->addWidget(captioned("VDS tree, connected", makeTree<fast::VdsTreeView, fast::VdsTreeDelegate>(true, &window),
                              &window),
                    2, 0);
    grid->addWidget(captioned("VDS tree, disconnected: empty until FAST answers",
                              makeTree<fast::VdsTreeView, fast::VdsTreeDelegate>(false, &window), &window),
                    2, 1);
    auto* osdu = makeTree<fast::OsduTreeView, fast::OsduTreeDelegate>(true, &window);
    grid->addWidget(captioned("OSDU tree, one icon hovered, filter open", osdu, &window), 1, 0);
    auto* filtered = makeTree<fast::OsduTreeView, fast::OsduTreeDelegate>(true, &window);
    filtered->proxyModel()->setFilterState(fast::FastSortFilterProxyModel::Unregistered, Qt::Unchecked);
    filtered->proxyModel()->invalidateFilterPublic();
    grid->addWidget(captioned("OSDU tree, \"Unregistered\" hidden", filtered, &window), 1, 1);

    window.show();
    window.resize(window.sizeHint());
    QApplication::processEvents();

    auto* delegate = qobject_cast<fast::FastTreeDelegate*>(osdu->itemDelegate());
    delegate->setHoveredIndex(osdu->QTreeView::model()->index(0, 3));
    auto* header = static_cast<fast::FastHeaderView*>(osdu->header());
    header->showSortPopup(0);
    QApplication::processEvents();

    QImage picture = window.grab().toImage();
    if (QWidget* popup = header->popupWidget()) {
        QPainter painter(&picture);
        painter.drawPixmap(window.mapFromGlobal(popup->mapToGlobal(QPoint(0, 0))), popup->grab());
    }
    if (!picture.save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "widget-gallery: cannot write %s\n", argv[1]);
        return 1;
    }
    std::printf("widget-gallery: wrote %s\n", argv[1]);
    return 0;
}
