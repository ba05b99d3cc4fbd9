#pragma once

#include <fast/panel/FastWidget.h>

#include <QString>

namespace fast {

// The OSDU Data Platform page. For now it shows its (empty) dataset tree; signing in and
// searching come with the OSDU client.
class FASTPANEL_EXPORT OsduWidget : public FastWidget
{
    Q_OBJECT

public:
    OsduWidget(const std::shared_ptr<Fast>& fast, const QString& projectPath, QWidget* parent = nullptr);

private:
    QString m_projectPath;
};

} // namespace fast
