// The panel under the pseudo-translation en_XA, which shows every translated text as "[text]":
// what a person reads on the three pages, in the mount dialog, the trees and their filter, the
// message boxes and the sign-in's browser page, and what the host's log gets as errors and
// information, must come with its brackets. A text without them escaped translation.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "PanelTrees.h"
#include "TestBrowser.h"

#include <fast/client/Fast.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastHeaderView.h>
#include <fast/trees/FastTreeView.h>
#include <kvWidgets/HelpToolTip.h>
#include <osdu/HttpResponse.h>
#include <osdu/OsduAuthProvider.h>

#include <QtTest>
#include <QtWidgets>

namespace {

constexpr int kPoll = 7000; // one polling period of the connection check, and its requests

// What is shown as it is in every language: numbers (a header without a label numbers its
// section), file names and URLs.
bool isData(const QString& text)
{
    static const QRegularExpression data(QStringLiteral(R"(^([\d.,:\s-]+|[\w.-]+\.(vds|kv)|\w+://\S+)$)"));
    return data.match(text).hasMatch();
}

// The words a person reads: a rich text (a help tip, a box with details) as its document shows it.
QString visibleWords(const QString& text)
{
    if (!Qt::mightBeRichText(text))
        return text.trimmed();
    QTextDocument document;
    document.setHtml(text);
    return document.toPlainText().trimmed();
}

// The texts that came without their brackets, each with where it was read.
class UnmarkedTexts
{
public:
    void check(const QString& place, const QString& text)
    {
        const QString words = visibleWords(text);
        if (words.isEmpty() || isData(words) || (words.startsWith('[') && words.endsWith(']')))
            return;
        const QString line = place + ": " + words;
        if (!m_lines.contains(line))
            m_lines << line;
    }

    // root and every widget in it.
    void widgets(const QWidget& root)
    {
        widget(root);
        for (const QWidget* child : root.findChildren<QWidget*>()) {
            // Qt's own parts of its widgets speak from Qt's catalogue: the tab bar's scroll buttons.
            if (!qobject_cast<const QTabBar*>(child->parentWidget()))
                widget(*child);
        }
    }

    // What was found, with the boxes shown and the host's log added.
    QString verdict(const MessageBoxAnswerer& answerer, const EventBusRecorder& recorder)
    {
        for (const MessageBoxAnswerer::Box& box : answerer.boxes()) {
            check("message box title", box.title);
            check("message box text", box.text);
        }
        for (const QString& text : recorder.texts(Error) + recorder.texts(Information))
            check("event-bus message", text);
        return m_lines.join('\n');
    }

private:
    void widget(const QWidget& widget)
    {
        const QString place = QString("%1 \"%2\"").arg(widget.metaObject()->className(), widget.objectName());
        check(place + " tool tip", widget.toolTip());
        check(place + " accessible name", widget.accessibleName());
        if (widget.isWindow())
            check(place + " window title", widget.windowTitle());
        // A line edit's text is what was typed, its placeholder ours; labels, buttons and spin
        // boxes have their text as a property.
        if (const auto* help = qobject_cast<const kvWidgets::HelpToolTip*>(&widget))
            check(place, help->text());
        else if (const auto* edit = qobject_cast<const QLineEdit*>(&widget))
            check(place + " placeholder", edit->placeholderText());
        else
            check(place, widget.property("text").toString());
        if (const auto* combo = qobject_cast<const QComboBox*>(&widget)) {
            for (int i = 0; i < combo->count(); ++i)
                check(place + " item", combo->itemText(i));
        }
        if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                check(place + " tab", tabs->tabText(i));
                check(place + " tab tool tip", tabs->tabToolTip(i));
            }
        }
        // A header view shows its tree's model: the tree reads it.
        const auto* view = qobject_cast<const QAbstractItemView*>(&widget);
        if (view && view->model() && !qobject_cast<const QHeaderView*>(view))
            modelTexts(place, *view->model());
    }

    // The header, every cell's tool tip, and the labels of the rows right under a volume
    // ("Files", "Id", "Path", "Kind"); the names and values beside them are data.
    void modelTexts(const QString& place, const QAbstractItemModel& model, const QModelIndex& parent = {},
                    int depth = 0)
    {
        if (depth == 0) {
            for (int column = 0; column < model.columnCount(); ++column)
                check(place + " header", model.headerData(column, Qt::Horizontal).toString());
        }
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < model.columnCount(parent); ++column)
                check(place + " cell tool tip", model.index(row, column, parent).data(Qt::ToolTipRole).toString());
            if (depth == 1)
                check(place + " row label", model.index(row, 0, parent).data().toString());
            modelTexts(place, model, model.index(row, 0, parent), depth + 1);
        }
    }

    QStringList m_lines;
};

// Waits until the panel has found FAST and its plug-in.
bool connectsToFast(const fast::FastTabWidget& panel)
{
    QSignalSpy connected(&panel, &fast::FastTabWidget::fastConnected);
    return connected.wait(kPoll);
}

// The title and the sentence of the page that the sign-in's listener gave the browser.
QStringList browserPageTexts(const QByteArray& page)
{
    static const QRegularExpression texts(QStringLiteral("<(title|p)>([^<]*)</\\1>"));
    QStringList found;
    for (auto match = texts.globalMatch(QString::fromUtf8(page)); match.hasNext();)
        found << match.next().captured(2);
    return found;
}

} // namespace

class TranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Before any panel is made, as a host does.
        QVERIFY(m_translator.load(QStringLiteral(PSEUDO_TRANSLATION)));
        QVERIFY(QCoreApplication::installTranslator(&m_translator));
    }

    void vdsPagesTheirTreesTheMountDialogAndTheirBoxes()
    {
        FastEmulatorFixture fixture;
        const auto client = fixture.client();
        client->mountFile(client->registerVds("/data/local.vds")->getMessage(), "l1", "", 0, 1, 0, 1, 0, 1);
        client->mountFile(client->registerVds("https://store.example/cloud")->getMessage(), "c1", "", 0, 1, 0, 1, 0, 1);
        fast::FastTabWidget panel(fixture.projectDir());
        panel.show();
        QVERIFY(connectsToFast(panel));
        panel.fillTrees({"/project/l1"}, {"/project/c1"});
        EventBusRecorder bus;
        MessageBoxAnswerer boxes;
        UnmarkedTexts unmarked;
        unmarked.widgets(panel);

        // The mount dialog as it opens, then refusing a name, then failing the mount in a box.
        fast::VdsWidget* cloud = cloudPage(panel);
        showPage(panel, cloud);
        pathField(*cloud)->setText("https://store.example/survey/cube");
        QTest::mouseClick(actionButton(*cloud), Qt::LeftButton);
        QTRY_VERIFY(openMountDialog(cloud));
        fast::MountNewVolume& dialog = *openMountDialog(cloud);
        unmarked.widgets(dialog);
        QTest::keyClicks(fileNameField(dialog), "a:b");
        QTest::mouseClick(saveButton(dialog), Qt::LeftButton);
        QVERIFY(!fileNameLabel(dialog)->toolTip().isEmpty());
        unmarked.widgets(dialog);
        fixture.emulator().setFault("POST", "/api/v2/file/", failing(500));
        fileNameField(dialog)->clear();
        QTest::keyClicks(fileNameField(dialog), "cube");
        QTest::mouseClick(saveButton(dialog), Qt::LeftButton);
        QTRY_COMPARE(boxes.boxes().size(), 1);

        // The local page's box: FAST refuses to register the chosen file.
        QTemporaryDir volumes;
        QFile volume(volumes.filePath("other.vds"));
        QVERIFY(volume.open(QIODevice::WriteOnly));
        volume.close();
        fixture.emulator().setFault("POST", "/api/v2/vds/", failing(500));
        fast::VdsWidget* local = localPage(panel);
        showPage(panel, local);
        answerNextFileDialog(volume.fileName());
        QTest::mouseClick(actionButton(*local), Qt::LeftButton);
        QTRY_COMPARE(boxes.boxes().size(), 2);

        const QString untranslated = unmarked.verdict(boxes, bus);
        QVERIFY2(untranslated.isEmpty(), qPrintable("untranslated:\n" + untranslated));
    }

    void osduPageSignInSearchFilterAndBox()
    {
        FastEmulatorFixture fixture;
        const auto osdu = startOsduEmulator(fixture.settings(), {}, 3, "http://localhost");
        fast::FastTabWidget panel(fixture.projectDir());
        panel.show();
        QVERIFY(connectsToFast(panel));
        fast::OsduWidget* page = osduPage(panel);
        showPage(panel, page);
        EventBusRecorder bus;
        MessageBoxAnswerer boxes;
        UnmarkedTexts unmarked;
        unmarked.widgets(*page);

        // No browser opens: the page shows the sign-in address until Cancel.
        const auto provider = fast::OsduFastInitializer::instance(fast::OsduFastInitializer::AWS)->authProvider();
        provider->setBrowserOpener([](const QUrl&) { return false; });
        QTest::mouseClick(connectButton(*page), Qt::LeftButton);
        QTRY_VERIFY(signInAddress(*page)->isVisible());
        unmarked.widgets(*page);
        QTest::mouseClick(connectButton(*page), Qt::LeftButton);

        const auto visit = std::make_shared<BrowserVisit>();
        provider->setBrowserOpener(testBrowser({}, visit));
        QTRY_VERIFY(connectButton(*page)->isEnabled());
        QTest::mouseClick(connectButton(*page), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(searchInput(*page)->isEnabled(), 15000);
        QTRY_VERIFY(visit->done);
        const QStringList browserPage = browserPageTexts(visit->page);
        QCOMPARE(browserPage.size(), 2);
        for (const QString& text : browserPage)
            unmarked.check("sign-in page in the browser", text);

        QVERIFY(search(*page));
        QCOMPARE(resultNames(*page).size(), 3);
        fast::FastTreeView* tree = page->treeView();
        auto& header = static_cast<fast::FastHeaderView&>(*tree->header());
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(10, header.height() / 2));
        QVERIFY(header.popupWidget());
        unmarked.widgets(*header.popupWidget());
        header.popupWidget()->close();
        unmarked.widgets(*page);

        // Mounting a dataset that FAST refuses to register: the OSDU page's box.
        fixture.emulator().setFault("POST", "/api/v2/vds/", failing(500));
        clickCell(tree, 0, 2);
        QTRY_COMPARE(boxes.boxes().size(), 1);

        const QString untranslated = unmarked.verdict(boxes, bus);
        QVERIFY2(untranslated.isEmpty(), qPrintable("untranslated:\n" + untranslated));
    }

private:
    QTranslator m_translator;
};

QTEST_MAIN(TranslationTest)
#include "tst_translation.moc"
