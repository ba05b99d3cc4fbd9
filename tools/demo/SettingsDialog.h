#pragma once

#include <QDialog>

class QLineEdit;

// Edits the three FAST settings in the demo's own settings store, the one the library reads.
// The panel reads them when it is made, so new values reach only a panel opened afterwards.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget* parent = nullptr);

    // "FAST at host:port, mount point ..." as the library will read them.
    static QString summary();

    // Accepted with the button that also asks for a new panel.
    bool reopenRequested() const { return m_reopen; }

private:
    void browseMountPoint();
    void save();

    QLineEdit* m_host;
    QLineEdit* m_port;
    QLineEdit* m_mountPoint;
    bool m_reopen = false;
};
