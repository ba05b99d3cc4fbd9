#include <fast/panel/VdsRegistration_p.h>

#include <fast/client/Fast.h>
#include <fast/client/Utf8Text_p.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/panel/PanelMessages_p.h>

#include <osdu/HttpResponse.h>

#include <QCoreApplication>

// What both pages tell the user is translated under their common base class, fast::FastWidget.

namespace fast {

std::string registerVdsInFast(const Fast& fast, const std::string& url)
{
    const auto response = fast.registerVds(url);
    const int status = response->getResponse();
    const QString where = text(url);
    if (status == 200 && isFastId(response->getMessage())) {
        information(QCoreApplication::translate("fast::FastWidget",
                                                "Successfully registered VDS (url=%1) in Bluware FAST™ with id=%2.")
                        .arg(where, text(response->getMessage())));
        return response->getMessage();
    }
    // An answer that names no id, or none that arrived, may still have registered the volume:
    // FAST's own listing says, so that nothing stays registered that the page does not know of.
    if (status == 200 || status == 0) {
        if (const std::optional<VdsInfo> known = fast.findVdsByUrl(url); known && !known->vdsId.empty()) {
            information(QCoreApplication::translate("fast::FastWidget",
                                                    "Successfully registered VDS (url=%1) in Bluware FAST™ with id=%2.")
                            .arg(where, text(known->vdsId)));
            return known->vdsId;
        }
    }
    if (status == 200 && response->getMessage().empty())
        information(QCoreApplication::translate("fast::FastWidget",
                                                "Unable to register VDS (url=%1) in Bluware FAST™ with empty id!")
                        .arg(where));
    else if (status == 405) // the service's answer to parameters it cannot take
        information(QCoreApplication::translate("fast::FastWidget",
                                                "Unable to register VDS (url=%1) in Bluware FAST™: invalid parameters.")
                        .arg(where));
    else if (status == 409)
        information(QCoreApplication::translate("fast::FastWidget", "VDS (url=%1) already registered in Bluware FAST™.")
                        .arg(where));
    else
        information(
            QCoreApplication::translate("fast::FastWidget",
                                        "Unable to register VDS (url=%1) in Bluware FAST™. Unexpected error code: %2.")
                .arg(where, QString::number(status)));
    return {};
}

void warnRegistrationFailed(QWidget* parent)
{
    warn(parent, QCoreApplication::translate("fast::FastWidget", "Unable to register VDS"),
         QCoreApplication::translate("fast::FastWidget",
                                     "Korvane™ was unable to register VDS in Bluware FAST™.\nPlease refer to Bluware "
                                     "FAST™ log files to get more information."));
}

void warnMountFailed(QWidget* parent)
{
    warn(parent, QCoreApplication::translate("fast::FastWidget", "Unable to mount VDS"),
         QCoreApplication::translate("fast::FastWidget",
                                     "Korvane™ was unable to mount VDS in Bluware FAST™.\nPlease refer to Bluware "
                                     "FAST™ and Korvane™ log files to get more information."));
}

void noteAlreadyRegistered(const std::string& url, const std::string& vdsId)
{
    information(
        QCoreApplication::translate("fast::FastWidget",
                                    "Successfully found a VDS (url=%1) already registered in Bluware FAST™ with id=%2.")
            .arg(text(url), text(vdsId)));
}

} // namespace fast
