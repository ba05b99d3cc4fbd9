#include <fast/panel/PanelMessages_p.h>

#include <korvane/MDEventBus.h>

#include <Poco/Exception.h>

#include <QCoreApplication>
#include <QMessageBox>

namespace fast {

void trace(const QString& text)
{
    MDEventBus::sendMessage(MDEventBus::Trace, text, false);
}

void information(const QString& text)
{
    MDEventBus::sendMessage(MDEventBus::Information, text, false);
}

void error(const QString& text)
{
    MDEventBus::sendMessage(MDEventBus::Error, text, false);
}

void warn(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox::warning(parent, title, text, QMessageBox::Ok);
}

QString exceptionText(const std::exception& failure)
{
    if (const auto* poco = dynamic_cast<const Poco::Exception*>(&failure))
        return QString::fromStdString(poco->message().empty() ? poco->displayText() : poco->message());
    return QString::fromUtf8(failure.what());
}

void traceException(const std::exception& failure)
{
    trace(QString("Exception: %1").arg(exceptionText(failure)));
}

void reportListingFailure(QWidget* parent, const std::exception& failure)
{
    // The pages' shared texts are translated under their common base class.
    const QString text = QCoreApplication::translate("fast::FastWidget", "Unable to parse JSON to get VDS list: %1")
                             .arg(exceptionText(failure));
    error(text);
    warn(parent, QCoreApplication::translate("fast::FastWidget", "Unable to list VDS"), text);
}

} // namespace fast
