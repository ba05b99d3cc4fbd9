#pragma once

#include <fast/fastpanel_export.h>

#include <QObject>

#include <memory>
#include <string>

namespace osdu {
class OsduAuthProvider;
}

namespace fast {

// Turns the user's OSDU settings for one cloud provider into an initialised sign-in provider,
// and keeps the refresh token it obtains, so that a later run signs in without the browser
// while the client id and secret stay the same. One per process: the provider chosen first
// stays in force.
class FASTPANEL_EXPORT OsduFastInitializer : public QObject
{
    Q_OBJECT

public:
    enum eCloudProvider : int { AWS = 0, Azure = 1 };

    // Never throws for missing settings: isInitialized() and lastError() tell.
    explicit OsduFastInitializer(eCloudProvider provider);
    ~OsduFastInitializer() override;

    // The process-wide instance, made with provider only if there is none yet.
    static std::shared_ptr<OsduFastInitializer> instance(eCloudProvider provider);
    // The process-wide instance, or empty when Connect was never pressed.
    static std::shared_ptr<OsduFastInitializer> currentInstance();

    bool isInitialized() const { return m_initialized; }
    // Why it is not initialised, for the user: translated, in UTF-8.
    const std::string& lastError() const { return m_lastError; }
    std::shared_ptr<osdu::OsduAuthProvider> authProvider() const { return m_authProvider; }

    // "FAST/OSDU_AUTHENTICATION_TIMEOUT" seconds (default 5), in milliseconds.
    static int authenticationTimeoutMs();
    // "AWS", "Azure", or empty for any other value.
    static std::string getCloudProviderSettingsGroup(eCloudProvider provider);

private:
    // Keeps the session for the next run: the refresh token, the fingerprint of the client
    // that obtained it and its expiry. A token that a renewal kept keeps its stored expiry; a
    // sign-in that gave no refresh token stores nothing.
    void storeRefreshToken(const std::string& settingsGroup);

    std::string m_grantType;
    std::string m_oauthUrl;
    std::string m_oauthTokenUrl;
    std::string m_clientId;
    std::string m_clientSecret;
    std::string m_refreshToken;
    std::string m_scope;
    // Unused, as m_reserved2: the two keep the members in the order and at the offsets that
    // the class has always had, so that a host built against an earlier header of this
    // exported class sees the same layout. New members go at the end.
    std::string m_reserved1;
    std::string m_callbackUrl;
    int m_callbackPort = 80;
    std::string m_resource;
    std::shared_ptr<osdu::OsduAuthProvider> m_authProvider;
    std::string m_reserved2;
    bool m_initialized = false;
    std::string m_lastError;
    std::string m_prompt;
    // The user hears once per process that sign-in gave no lasting session.
    bool m_toldNoRefreshToken = false;
};

// "Amazon Web Services", "Microsoft Azure" (translated, in UTF-8), or empty for any other value.
FASTPANEL_EXPORT std::string getCloudProviderDisplayName(OsduFastInitializer::eCloudProvider provider);

} // namespace fast
