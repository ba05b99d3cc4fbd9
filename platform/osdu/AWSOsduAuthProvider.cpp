#include <osdu/AWSOsduAuthProvider.h>

#include "TokenEndpoint_p.h"

namespace osdu {

AWSOsduAuthProvider::AWSOsduAuthProvider(QObject* parent) : OsduAuthProvider(parent)
{
}

std::string AWSOsduAuthProvider::getProviderName()
{
    return "AWS";
}

void AWSOsduAuthProvider::addClientAuthentication(FormFields& form, Headers& headers) const
{
    if (params().clientSecret.empty()) {
        OsduAuthProvider::addClientAuthentication(form, headers);
        return;
    }
    // HTTP Basic wants both parts form-encoded before they are joined.
    const QByteArray credentials = percentEncoded(params().clientId) + ':' + percentEncoded(params().clientSecret);
    headers.emplace_back("Authorization", "Basic " + credentials.toBase64().toStdString());
}

} // namespace osdu
