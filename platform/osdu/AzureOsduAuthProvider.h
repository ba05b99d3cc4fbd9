#pragma once

#include <osdu/OsduAuthProvider.h>

namespace osdu {

// Microsoft Azure: v2.0 endpoints; "offline_access" in the scope so that a refresh token comes
// back; "resource" sent when set; the client secret in the token request's form.
class OSDU_EXPORT AzureOsduAuthProvider : public OsduAuthProvider
{
    Q_OBJECT

public:
    explicit AzureOsduAuthProvider(QObject* parent = nullptr);
    std::string getProviderName() override;

protected:
    QString authorizationScope() const override;
    void addAuthorizationFields(std::vector<std::pair<QString, QString>>& query) const override;
    void addClientAuthentication(FormFields& form, Headers& headers) const override;
};

} // namespace osdu
