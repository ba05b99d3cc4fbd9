#pragma once

#include <fast/fastpanel_export.h>

#include <osdu/StorageRecord.h>

#include <QLineEdit>

#include <functional>
#include <memory>

namespace osdu {
class OsduHttpClient;
}

namespace fast {

class FileCollectionSearch;
class SearchRun;

// The filter box of the OSDU page. It runs each search on a thread of the library's and hands the
// matches back through searchDone on its own thread, once the search has ended; a box deleted
// in the meantime drops them.
class FASTPANEL_EXPORT SearchInput : public QLineEdit
{
    Q_OBJECT

public:
    explicit SearchInput(QWidget* parent = nullptr);
    ~SearchInput() override;

    // After each sign-in: a client and a search for the signed-in provider. What Return does is
    // the page's to say: it runs the page's search, which also clears and disables.
    void initialize();
    void search();
    // The search under way, or the last one once it has ended (its progress and what it could not
    // do); null before the first.
    std::shared_ptr<const SearchRun> lastSearch() const { return m_run; }
    // Stops the search under way; its results, those found so far, still come through searchDone.
    void cancel();
    // Room for the whole placeholder, which tells the user what the box does.
    QSize sizeHint() const override;

Q_SIGNALS:
    void searchDone(std::shared_ptr<osdu::StorageRecordCollection> results);

private:
    std::shared_ptr<osdu::OsduHttpClient> m_httpClient;
    std::shared_ptr<FileCollectionSearch> m_search;
    std::function<void(std::shared_ptr<osdu::StorageRecordCollection>)> m_resultsCallback;
    std::shared_ptr<SearchRun> m_run;
};

} // namespace fast
