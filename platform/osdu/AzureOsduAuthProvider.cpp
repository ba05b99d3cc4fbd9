#include <osdu/AzureOsduAuthProvider.h>

namespace osdu {

AzureOsduAuthProvider::AzureOsduAuthProvider(QObject* parent) : OsduAuthProvider(parent)
{
}

std::string AzureOsduAuthProvider::getProviderName()
{
    return "Azure";
}

QString AzureOsduAuthProvider::authorizationScope() const
{
    // Without offline_access Azure gives no refresh token, and every start would need the browser.
    QString scope = OsduAuthProvider::authorizationScope();
    if (scope.split(QLatin1Char(' '), Qt::SkipEmptyParts).contains(QStringLiteral("offline_access")))
        return scope;
    return scope.isEmpty() ? QStringLiteral("offline_access") : scope + QStringLiteral(" offline_access");
}

void AzureOsduAuthProvider::addAuthorizationFields(std::vector<std::pair<QString, QString>>& query) const
{
    if (!params().resource.empty())
        query.emplace_back(QStringLiteral("resource"), QString::fromStdString(params().resource));
}

void AzureOsduAuthProvider::addClientAuthentication(FormFields& form, Headers& headers) const
{
    OsduAuthProvider::addClientAuthentication(form, headers);
    if (!params().clientSecret.empty())
        form.emplace_back("client_secret", params().clientSecret);
}

} // namespace osdu
