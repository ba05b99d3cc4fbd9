#include <fast/osdu/OsduFastInitializer.h>

#include <fast/client/Fast.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/panel/PanelMessages_p.h>

#include <osdu/AWSOsduAuthProvider.h>
#include <osdu/AzureOsduAuthProvider.h>
#include <osdu/Settings.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QSettings>

namespace fast {

namespace {

std::shared_ptr<OsduFastInitializer>& processInstance()
{
    static std::shared_ptr<OsduFastInitializer> instance;
    return instance;
}

QString key(const std::string& name)
{
    return QString::fromStdString(name);
}

// Ties a stored token to the client id and secret that obtained it.
QString credentialFingerprint(const std::string& clientId, const std::string& clientSecret)
{
    const QByteArray credentials = QByteArray::fromStdString(clientId + ":" + clientSecret);
    return QString::fromLatin1(QCryptographicHash::hash(credentials, QCryptographicHash::Sha256).toBase64());
}

// The leading decimal integer of text, 0 when there is none.
int leadingInteger(const std::string& text)
{
    try {
        return std::stoi(text, nullptr, 10);
    } catch (const std::exception&) {
        return 0;
    }
}

struct StoredToken
{
    std::string token; // the raw stored value
    bool usable = false;
};

StoredToken storedRefreshToken(const std::string& group, const std::string& clientId, const std::string& clientSecret)
{
    QSettings settings;
    settings.beginGroup(key(group));
    StoredToken stored;
    stored.token = settings.value(key(OSDU_REFRESH_TOKEN)).toString().toStdString();
    const QString hash = settings.value(key(OSDU_REFRESH_TOKEN_HASH), QString()).toString();
    const QDateTime expiry = settings.value(key(OSDU_REFRESH_TOKEN_EXPIRY), QDateTime()).toDateTime();
    stored.usable = !stored.token.empty() && hash == credentialFingerprint(clientId, clientSecret)
                    && QDateTime::currentDateTime() < expiry;
    return stored;
}

std::shared_ptr<osdu::OsduAuthProvider> makeProvider(OsduFastInitializer::eCloudProvider provider)
{
    if (provider == OsduFastInitializer::Azure)
        return std::make_shared<osdu::AzureOsduAuthProvider>(nullptr);
    return std::make_shared<osdu::AWSOsduAuthProvider>(nullptr);
}

} // namespace

OsduFastInitializer::OsduFastInitializer(eCloudProvider provider)
{
    const std::string group = getCloudProviderSettingsGroup(provider);
    const auto setting = [&group](const std::string& name, const std::string& fallback) {
        return osdu::getSettingValue(group, name, fallback);
    };
    m_grantType = setting(OSDU_GRANT_TYPE, "");
    m_scope = setting(OSDU_SCOPE, "openid email");
    m_callbackUrl = setting(OSDU_CALLBACK_URL, "http://localhost");
    m_callbackPort = leadingInteger(setting(OSDU_CALLBACK_PORT, "80"));
    m_clientId = setting(OSDU_CLIENT_ID, "");
    m_clientSecret = setting(OSDU_CLIENT_SECRET, "");
    m_oauthUrl = setting(OSDU_OAUTH_URL, "");
    m_oauthTokenUrl = setting(OSDU_OAUTH_TOKEN_URL, "");

    const StoredToken stored = storedRefreshToken(group, m_clientId, m_clientSecret);
    m_refreshToken = setting(OSDU_REFRESH_TOKEN, stored.usable ? stored.token : std::string());
    // The record shares the settings' group: a stored token that may no longer be used must
    // not come back as if the user had set it.
    if (!stored.usable && !stored.token.empty() && m_refreshToken == stored.token)
        m_refreshToken.clear();
    m_resource = setting(OSDU_RESOURCE, "");
    m_prompt = setting(OSDU_PROMPT, "");

    m_authProvider = makeProvider(provider);
    if (m_authProvider && !m_clientId.empty() && !m_clientSecret.empty() && !m_oauthUrl.empty()
        && !m_oauthTokenUrl.empty()) {
        osdu::OsduAuthProviderInitParams params;
        params.clientId = m_clientId;
        params.clientSecret = m_clientSecret;
        params.oauthUrl = m_oauthUrl;
        params.oauthTokenUrl = m_oauthTokenUrl;
        params.scope = m_scope;
        params.refreshToken = m_refreshToken;
        params.callbackUrl = m_callbackUrl;
        params.callbackPort = m_callbackPort;
        params.resource = m_resource;
        params.prompt = m_prompt;
        m_authProvider->initialize(params);
        m_initialized = true;
        connect(m_authProvider.get(), &osdu::OsduAuthProvider::userAuthorized, this,
                [this, group] { storeRefreshToken(group); });
        // A token rotated while searching is the one the next run needs.
        connect(m_authProvider.get(), &osdu::OsduAuthProvider::refreshTokenRenewed, this,
                [this, group] { storeRefreshToken(group); });
    } else {
        m_initialized = false;
        m_lastError = tr("Please specify all required initialization parameters in Korvane settings.").toStdString();
    }
}

OsduFastInitializer::~OsduFastInitializer() = default;

std::shared_ptr<OsduFastInitializer> OsduFastInitializer::instance(eCloudProvider provider)
{
    std::shared_ptr<OsduFastInitializer>& instance = processInstance();
    if (!instance)
        instance = std::make_shared<OsduFastInitializer>(provider);
    return instance;
}

std::shared_ptr<OsduFastInitializer> OsduFastInitializer::currentInstance()
{
    return processInstance();
}

int OsduFastInitializer::authenticationTimeoutMs()
{
    return QSettings().value(key(FAST_GROUP) + "/" + key(OSDU_AUTHENTICATION_TIMEOUT), 5).toInt() * 1000;
}

std::string OsduFastInitializer::getCloudProviderSettingsGroup(eCloudProvider provider)
{
    switch (provider) {
    case AWS:
        return "AWS";
    case Azure:
        return "Azure";
    }
    return {};
}

void OsduFastInitializer::storeRefreshToken(const std::string& settingsGroup)
{
    const QString token = m_authProvider->refreshToken();
    if (token.isEmpty()) {
        if (!m_toldNoRefreshToken)
            information(tr("The OSDU™ Data Platform gave no refresh token: the next run will need the web browser to "
                           "sign in again."));
        m_toldNoRefreshToken = true;
        return;
    }
    // Unknown when a renewal kept the stored token without a word on its lifetime: the stored
    // expiry stands.
    const QDateTime expiry = m_authProvider->refreshTokenExpiry();
    if (!expiry.isValid())
        return;
    QSettings settings;
    settings.beginGroup(key(settingsGroup));
    settings.setValue(key(OSDU_REFRESH_TOKEN_HASH), credentialFingerprint(m_clientId, m_clientSecret));
    settings.setValue(key(OSDU_REFRESH_TOKEN_EXPIRY), expiry);
    settings.setValue(key(OSDU_REFRESH_TOKEN), token);
}

// The context is spelled out: Qt 6's lupdate files a class's tr() called from a free function
// under the class name without its namespace, which is not the context tr() looks up.
std::string getCloudProviderDisplayName(OsduFastInitializer::eCloudProvider provider)
{
    switch (provider) {
    case OsduFastInitializer::AWS:
        return QCoreApplication::translate("fast::OsduFastInitializer", "Amazon Web Services").toStdString();
    case OsduFastInitializer::Azure:
        return QCoreApplication::translate("fast::OsduFastInitializer", "Microsoft Azure").toStdString();
    }
    return {};
}

} // namespace fast
