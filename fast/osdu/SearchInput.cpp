#include <fast/osdu/SearchInput.h>

#include <fast/osdu/FileCollectionSearch.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/panel/BackgroundWork_p.h>
#include <fast/panel/PanelMessages_p.h>

#include <osdu/OsduAuthProvider.h>
#include <osdu/OsduHttpClient.h>
#include <osdu/Settings.h>

#include <QStyle>
#include <QStyleOptionFrame>

namespace fast {

SearchInput::SearchInput(QWidget* parent) : QLineEdit(parent)
{
    setPlaceholderText(tr("Press search button to retrieve all available files..."));
    m_resultsCallback = [this](std::shared_ptr<osdu::StorageRecordCollection> results) {
        Q_EMIT searchDone(std::move(results));
    };
}

SearchInput::~SearchInput()
{
    // Nobody will look at the results: the thread need not keep the platform busy.
    cancel();
}

void SearchInput::cancel()
{
    if (m_run)
        m_run->cancel();
}

void SearchInput::initialize()
{
    const auto initializer = OsduFastInitializer::currentInstance();
    if (!initializer || !initializer->authProvider())
        return;
    const std::shared_ptr<osdu::OsduAuthProvider> provider = initializer->authProvider();
    const std::string baseUrl = osdu::getSettingValue(provider->getProviderName(), OSDU_BASE_URL, "");
    m_httpClient = std::make_shared<osdu::OsduHttpClient>(baseUrl, provider, nullptr);
    m_search = createFileCollectionSearch(m_httpClient);
}

void SearchInput::search()
{
    const auto initializer = OsduFastInitializer::currentInstance();
    const std::shared_ptr<osdu::OsduAuthProvider> provider = initializer ? initializer->authProvider() : nullptr;
    m_run = std::make_shared<SearchRun>();
    if (!provider || !m_search) {
        // Not signed in: nothing to search, but whoever waits for the answer still gets one.
        m_resultsCallback(std::make_shared<osdu::StorageRecordCollection>());
        return;
    }
    // Read here, once: the box belongs to the GUI thread.
    const std::string filter = text().toStdString();
    // The worker only fills this; the box reads it once the search has ended.
    auto found = std::make_shared<std::shared_ptr<osdu::StorageRecordCollection>>();
    const auto searching = [search = m_search, provider, filter, found, run = m_run] {
        try {
            search->performSearch(
                provider->getProviderName(), filter,
                [found](std::shared_ptr<osdu::StorageRecordCollection> results) { *found = std::move(results); }, *run);
        } catch (const std::exception& failure) {
            trace(QString("Unable to search the OSDU platform: %1").arg(exceptionText(failure)));
        }
    };
    // Delivered on this box's thread and only while the box lives: when the panel is closed
    // during a search, the destructor cancels it and the late results are dropped with the
    // queued call.
    startInBackground(searching, this, [this, found] {
        m_resultsCallback(*found ? *found : std::make_shared<osdu::StorageRecordCollection>());
    });
}

QSize SearchInput::sizeHint() const
{
    QSize hint = QLineEdit::sizeHint();
    // The line edit's own hint holds about 17 characters. Around the text come, as QLineEdit lays
    // them out, its 2-pixel inner margin on each side, the text and contents margins, and the
    // style's frame.
    constexpr int kInnerMargins = 2 * 2;
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QMargins text = textMargins();
    const QMargins contents = contentsMargins();
    const int width = fontMetrics().horizontalAdvance(placeholderText()) + kInnerMargins + text.left() + text.right()
                      + contents.left() + contents.right();
    const QSize wanted = style()->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(width, hint.height()), this);
    hint.setWidth(std::max(hint.width(), wanted.width()));
    return hint;
}

} // namespace fast
