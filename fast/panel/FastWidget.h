#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsMetaTypes.h>

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

namespace fast {

class Fast;
class FastTreeView;

// Where a volume handed to the host comes from.
enum eVdsLocation { OSDU = 1, LOCAL_FILE = 2, CLOUD_URL = 3 };

// The common base of the panel's pages: the shared FAST client, the page's volume tree, the
// signals through which a page speaks to the host, and what the tree's unmount and delete
// icons do.
class FASTPANEL_EXPORT FastWidget : public QWidget
{
    Q_OBJECT

public:
    FastWidget(std::shared_ptr<Fast> fast, QWidget* parent = nullptr);
    ~FastWidget() override;

    // Forwards to the tree; a page without a tree yet ignores it.
    virtual void setConnectedToFast(bool connected);

    FastTreeView* treeView() const { return m_treeView; }

Q_SIGNALS:
    void sendActionToMdi(QObject*, QObject*, const QString&);
    void addToExtraDataManager(QString fileName, fast::eVdsLocation vdsLocation);
    void removeVdsFileFromProject(QString fileName);

protected:
    // For the derived page, once it has made m_treeView.
    void connectTreeView();
    // The host hears of the removals first, then the tree loses the volume. When FAST does not
    // answer at all, the tree and the host keep everything and the user is told.
    void onUnmountVds(std::string vdsId, std::vector<VdsFile> fileList);
    // The tree loses the file (and a volume left without files is unregistered) before the
    // host hears of the removal; kept, as above, when FAST does not answer.
    void onDeleteFile(std::string vdsId, VdsFile& vdsFile);
    // The mount dialog for the registered volume vdsId, with the extent FAST's description of
    // it gives: a mount lands in the page's onVdsMounted(); a first mount that is cancelled
    // leaves nothing registered behind (the volume is unregistered again).
    void openMountDialog(const QString& projectPath, const VdsModel& vdsModel, const std::string& vdsId);
    // A mount through the dialog succeeded: the page shows the new file.
    virtual void onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName) = 0;

    std::shared_ptr<Fast> m_fast;
    FastTreeView* m_treeView = nullptr;

private:
    // Tells the host the files are gone and drops the volume from the tree.
    void forgetVolume(const std::string& vdsId, const std::vector<VdsFile>& fileList);
    void tellFastUnreachable();
};

} // namespace fast

Q_DECLARE_METATYPE(fast::eVdsLocation)
