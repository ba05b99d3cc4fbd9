#include <fast/osdu/SearchInput.h>

#include <fast/osdu/FileCollectionSearch.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/OsduSettingsKeys.h>

#include <osdu/OsduAuthProvider.h>
#include <osdu/OsduHttpClient.h>
#include <osdu/Settings.h>

#include <QThread>

namespace fast {

SearchInput::SearchInput(QWidget* parent) : QLineEdit(parent)
{
    setPlaceholderText("Press search button to retrieve all available files...");
    m_resultsCallback = [this](std::shared_ptr<osdu::StorageRecordCollection> results) {
        Q_EMIT searchDone(std::move(results));
    };
}

SearchInput::~SearchInput() = default;

void SearchInput::initialize()
{
    const auto initializer = OsduFastInitializer::currentInstance();
    if (!initializer || !initializer->authProvider())
        return;
    const std::shared_ptr<osdu::OsduAuthProvider> provider = initializer->authProvider();
    const std::string baseUrl = osdu::getSettingValue(provider->getProviderName(), OSDU_BASE_URL, "");
    m_httpClient = std::make_shared<osdu::OsduHttpClient>(baseUrl, provider, nullptr);
    m_search = createFileCollectionSearch(m_httpClient);
    connect(this, &QLineEdit::returnPressed, this, &SearchInput::search, Qt::UniqueConnection);
}

void SearchInput::search()
{
    const auto initializer = OsduFastInitializer::currentInstance();
    const std::shared_ptr<osdu::OsduAuthProvider> provider = initializer ? initializer->authProvider() : nullptr;
    if (!provider || !m_search) {
        // Not signed in: nothing to search, but whoever waits for the answer still gets one.
        Q_EMIT searchDone(std::make_shared<osdu::StorageRecordCollection>());
        return;
    }
    // Read here, once: the box belongs to the GUI thread.
    const std::string filter = text().toStdString();
    QThread* worker = QThread::create([search = m_search, provider, filter, callback = m_resultsCallback] {
        search->performSearch(provider->getProviderName(), filter, callback);
    });
    connect(worker, &QThread::finished, worker, &QObject::deleteLater);
    worker->start(QThread::InheritPriority);
}

} // namespace fast
