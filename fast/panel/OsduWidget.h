#pragma once

#include <fast/panel/FastWidget.h>

#include <osdu/StorageRecord.h>

#include <QString>
#include <QUrl>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;

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

    // Connect: takes the process-wide initializer (the first provider chosen in the process
    // stays), listens to its provider and starts the sign-in; a provider that cannot be set up
    // is an "Error Initializing OSDU" box. While the sign-in waits the button reads "Cancel",
    // and pressing it again ends the sign-in.
    void onConnect();
    // The sign-in failed: the message and its details in a box, and Connect enabled again.
    void authenticationError(const QString& message, const QString& details, const QUrl& url);
    // What the provider says along the way, as information in the host's log.
    void logAuthInfo(const QString& message);
    // Signed in: Connect is enabled again and enableUI() follows, which enables the search.
    void userAuthorized();
    // The platform session can no longer be renewed: once any search under way has ended, the
    // user is told and Connect signs in again.
    void sessionEnded();
    // Search (the button or Return): one at a time; clears the tree, shows the busy cursor and
    // hands the filter to the search box, whose results come back in onSearchDone(). While a
    // search runs the button reads Cancel, and pressing it cancels the search.
    void performSearch();
    // The button while a search runs, or Escape: the search stops, and what it found shows.
    void cancelSearch();
    // Shows the results with what FAST knows of each dataset, the result count, and gives the
    // cursor and the search back; tells an ended session now if it ended meanwhile.
    void onSearchDone(const std::shared_ptr<osdu::StorageRecordCollection>& results);
    // The tree's mount icon: registers the dataset's URL with FAST unless it has an id already,
    // then opens the mount dialog; a failure undoes the registration it made.
    void onMountVds(const QString& projectPath, const VdsModel& vdsModel);
    // The mount dialog's success: the file joins its dataset's row.
    void onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName) override;

Q_SIGNALS:
    void enableUI();

protected:
    // Escape cancels the search under way; otherwise it goes on to the host as before.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void enableSearch();
    // Connect reads "Cancel" while a sign-in this page started waits; the address shows only then.
    void setSigningIn(bool signingIn);
    void cancelSignIn();
    void showSignInAddress(const QUrl& url);
    void tellSessionEnded();
    // The VDS FAST knows, empty (and reported) when the listing cannot be read.
    std::vector<VdsInfo> fastVolumes();
    void showResults(const std::shared_ptr<osdu::StorageRecordCollection>& results);
    void showProgress();
    // The count of datasets found, and what the search could not do.
    QString resultText(int count) const;
    // After a failed mount: unregisters what this mount registered, and shows the dataset
    // unregistered again.
    void forgetRegistration(const VdsModel& vdsModel, const std::string& vdsId);

    OsduTreeView* m_osduTree = nullptr;
    QLabel* m_resultLabel = nullptr;
    SearchInput* m_searchInput = nullptr;
    QPushButton* m_searchButton = nullptr;
    QComboBox* m_providerChoice = nullptr;
    QPushButton* m_connectButton = nullptr;
    QTimer* m_progressTimer = nullptr;
    std::shared_ptr<OsduFastInitializer> m_initializer;
    QString m_projectPath;
    // From the search's start to its results: the busy cursor is ours to restore.
    bool m_searching = false;
    // The session ended during the search under way; told when it is over.
    bool m_sessionEnded = false;
    QWidget* m_signInAddressRow = nullptr;
    QLineEdit* m_signInAddress = nullptr;
    bool m_signingIn = false;
};

} // namespace fast
