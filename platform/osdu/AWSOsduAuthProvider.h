#pragma once

#include <osdu/OsduAuthProvider.h>

namespace osdu {

// Amazon Web Services (Cognito): the client secret, when there is one, by HTTP Basic at the
// token endpoint; only http://localhost is accepted there as a plain-HTTP redirect.
class OSDU_EXPORT AWSOsduAuthProvider : public OsduAuthProvider
{
    Q_OBJECT

public:
    explicit AWSOsduAuthProvider(QObject* parent = nullptr);
    std::string getProviderName() override;

protected:
    void addClientAuthentication(FormFields& form, Headers& headers) const override;
};

} // namespace osdu
