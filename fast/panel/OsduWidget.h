#pragma once

#include <fast/panel/FastWidget.h>

#include <osdu/StorageRecord.h>

#include <QString>
#include <QUrl>

#include <memory>

class QComboBox;
class QLabel;
class QPushButton;

namespace fast {

class OsduFastInitializer;
class OsduTreeView;
class SearchInput;

// The OSDU Data Platform page: sign in with the chosen cloud provider, search the platform's
// VDS file collections, and mount one through FAST like a cloud VDS.
class FASTPANEL_EXPORT OsduWidget : public FastWidget
{
    Q_OBJECT

public:
    OsduWidget(const std::shared_ptr<Fast>& fast, const QString& projectPath, QWidget* parent = nullptr);
    ~OsduWidget() override;

    // Back in touch with FAST, the datasets found before show again, with what FAST now says of
    // them (its id and files for each); the tree was emptied while FAST was away.
    void setConnectedToFast(bool connected) override;

    void onConnect();
    void authenticationError(const QString& message, const QString& details, const QUrl& url);
    void logAuthInfo(const QString& message);
    void userAuthorized();
    // The platform session can no longer be renewed: once any search under way has ended, the
    // user is told and Connect signs in again.
    void sessionEnded();
    void performSearch();
    void onSearchDone(const std::shared_ptr<osdu::StorageRecordCollection>& results);
    void onMountVds(const QString& projectPath, const VdsModel& vdsModel);
    void onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName);

Q_SIGNALS:
    void enableUI();

private:
    void enableSearch();
    void tellSessionEnded();
    // The VDS FAST knows, empty (and reported) when the listing cannot be read.
    std::vector<VdsInfo> fastVolumes();
    void showResults(const std::shared_ptr<osdu::StorageRecordCollection>& results);
    void openMountDialog(const QString& projectPath, const VdsModel& vdsModel, const std::string& vdsId);
    // After a failed mount: unregisters what this mount registered, and shows the dataset
    // unregistered again.
    void forgetRegistration(const VdsModel& vdsModel, const std::string& vdsId);

    OsduTreeView* m_osduTree = nullptr;
    QLabel* m_resultLabel = nullptr;
    SearchInput* m_searchInput = nullptr;
    QPushButton* m_searchButton = nullptr;
    QComboBox* m_providerChoice = nullptr;
    QPushButton* m_connectButton = nullptr;
    std::shared_ptr<OsduFastInitializer> m_initializer;
    QString m_projectPath;
    // From the search's start to its results: the wait cursor is ours to restore.
    bool m_searching = false;
    // The session ended during the search under way; told when it is over.
    bool m_sessionEnded = false;
};

} // namespace fast
