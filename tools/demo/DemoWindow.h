#pragma once

#include <fast/panel/FastTabWidget.h>

#include <QMainWindow>
#include <QPointer>

class ProjectPane;
class ProjectStore;
class QDockWidget;
class QLabel;

// The window that plays the host application: the panel in a dock, the project and the event
// bus in the middle, and a menu for the FAST settings.
class DemoWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit DemoWindow(const QString& projectFolder, QWidget* parent = nullptr);

    fast::FastTabWidget* panel() const { return m_panel; }
    ProjectStore* project() const { return m_project; }
    bool isFastConnected() const { return m_connected; }
    // The panel's own status line, as the user reads it.
    QString panelStatus() const;

    // A panel reads the settings when it is made; this is how new settings take effect.
    void reopenPanel();

private:
    void createMenus();
    void openPanel();
    void editSettings();
    void onFastConnected(bool connected);
    void onAddToExtraDataManager(const QString& fileName, fast::eVdsLocation location);
    void onRemoveVdsFileFromProject(const QString& fileName);
    void showSettingsSummary();

    ProjectStore* m_project;
    ProjectPane* m_projectPane;
    QDockWidget* m_dock;
    QLabel* m_settingsSummary;
    QPointer<fast::FastTabWidget> m_panel;
    bool m_connected = false;
};
