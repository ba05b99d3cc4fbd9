#pragma once

#include <fast/fastpanel_export.h>
#include <fast/panel/FastWidget.h>

#include <QList>
#include <QPixmap>
#include <QSet>
#include <QString>
#include <QWidget>

#include <memory>

class QLabel;
class QTabWidget;

namespace fast {

class CheckConnectionToFastWorker;

// The panel the host docks: its one entry point into the library. Three pages (the OSDU
// Data Platform browser, local VDS files, cloud VDS files), a status line telling whether FAST
// and the host's plug-in answer, and a worker that asks every five seconds.
class FASTPANEL_EXPORT FastTabWidget : public QWidget
{
    Q_OBJECT

public:
    // Starts polling FAST at once; projectPath is the host project's folder, watched for changes.
    explicit FastTabWidget(const QString& projectPath, QWidget* parent = nullptr);
    // Returns at once: the worker ends by itself right after, or after the poll under way.
    ~FastTabWidget() override;

    // The local page lists from localProjectFiles, the cloud page from cloudProjectFiles.
    void fillTrees(const QSet<QString>& localProjectFiles, const QSet<QString>& cloudProjectFiles);
    void clearTrees();
    // In tab order: OSDU, local, cloud.
    void setTabIcons(const QList<QPixmap>& icons) const;

    // Wide enough for the three tabs side by side, without scroll arrows, and for what the pages
    // ask for (the OSDU page's search box shows its placeholder whole).
    QSize sizeHint() const override;

Q_SIGNALS:
    void updateProjectBrowser();
    // Declared for the host; the library never sends it.
    void updateFastFileExtension(QString extension);
    void addToExtraDataManager(QString fileName, fast::eVdsLocation vdsLocation);
    void removeVdsFileFromProject(QString fileName);
    // Both the service and the host's plug-in answer; sent only when that changes.
    void fastConnected(bool connected);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void updateStatus(bool serviceAvailable, bool korvanePluginAvailable, const QString& version);

    QTabWidget* m_tabWidget = nullptr;
    QLabel* m_statusLabel = nullptr;
    bool m_connected = false;
    // Shared with its thread, which deletes it once the loop has ended after the panel.
    std::shared_ptr<CheckConnectionToFastWorker> m_worker;
};

} // namespace fast
