#include <fast/client/Fast.h>

#include <fast/client/Utf8Text_p.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VirtualDrive.h>

#include <korvane/MDEventBus.h>
#include <osdu/CurlSession.h>
#include <osdu/HttpResponse.h>
#include <osdu/Settings.h>

#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Object.h>

#include <QCoreApplication>
#include <QString>

#include <sstream>
#include <stdexcept>

namespace fast {

namespace {

// Call-site numbers carried by the request and trace lines; the host's log readers rely on them.
enum CallSite : int {
    AboutCall = 43,
    VersionJsonSite = 70,
    PluginStatusCall = 89,
    MountFileCall = 143,
    UnmountFileCall = 161,
    UnmountVolumeCall = 173,
    DeleteFileCall = 187,
    VdsListCall = 201,
    FileListCall = 217,
    RegisterVdsCall = 243,
    PluginDescriptionCall = 260,
};

const char* const kApi = "/api/v2/";

enum class Method { Get, Post, Delete };

void trace(const QString& line)
{
    MDEventBus::sendMessage(MDEventBus::Trace, line, false);
}

void traceRequest(Method method, const std::string& url, const std::string& body, CallSite site)
{
    const QString number = QString::number(site);
    switch (method) {
    case Method::Get:
        trace(QString("Call FAST REST API %2: method=GET, url=%1").arg(text(url), number));
        break;
    case Method::Delete:
        trace(QString("Call FAST REST API %2: method=DELETE, url=%1").arg(text(url), number));
        break;
    case Method::Post:
        trace(QString("Call FAST REST API %3: method=POST, url=%1, body=%2").arg(text(url), text(body), number));
        break;
    }
}

void traceResponse(const osdu::HttpResponse& response)
{
    trace(QString("Response from FAST REST API: code=%1, body=%2")
              .arg(QString::number(response.getResponse()), text(response.getMessage())));
}

std::shared_ptr<osdu::HttpResponse> send(Method method, const std::string& url, const std::string& body)
{
    osdu::CurlSession session;
    session.setUrl(url);
    osdu::CurlResponse answer;
    switch (method) {
    case Method::Get:
        answer = session.get();
        break;
    case Method::Delete:
        answer = session.del();
        break;
    case Method::Post:
        session.setBody(body);
        answer = session.post();
        break;
    }
    auto response = std::make_shared<osdu::HttpResponse>();
    response->setResponse(answer);
    return response;
}

// The request path of every operation but the two status calls: request line, call, response line.
std::shared_ptr<osdu::HttpResponse> tracedCall(Method method, const std::string& url, CallSite site,
                                               const std::string& body = {})
{
    traceRequest(method, url, body, site);
    auto response = send(method, url, body);
    traceResponse(*response);
    return response;
}

// The status calls run every five seconds: they keep the log quiet unless they fail.
std::shared_ptr<osdu::HttpResponse> quietGet(const std::string& url, CallSite site)
{
    auto response = send(Method::Get, url, {});
    if (response->getResponse() != 200) {
        traceRequest(Method::Get, url, {}, site);
        traceResponse(*response);
    }
    return response;
}

Poco::JSON::Object::Ptr range(std::int32_t min, std::int32_t max)
{
    Poco::JSON::Object::Ptr bounds = new Poco::JSON::Object;
    bounds->set("max", max);
    bounds->set("min", min);
    return bounds;
}

} // namespace

Fast::Fast(const std::string& host)
    : m_baseUrl("http://" + host + ':' + osdu::getSettingValue(FAST_GROUP, FAST_PORT, "27182"))
{
}

std::shared_ptr<osdu::HttpResponse> Fast::getAbout() const
{
    return quietGet(m_baseUrl + kApi + "about", AboutCall);
}

std::optional<std::string> Fast::getVersion() const
{
    const auto about = getAbout();
    if (about->getResponse() != 200) {
        MDEventBus::sendMessage(
            MDEventBus::Error,
            QCoreApplication::translate("fast::Fast", "Unable to get FAST status: HTTP request failed with status=%1")
                .arg(about->getResponse()),
            false);
        return std::nullopt;
    }
    try {
        return jsonValue("version", about->getMessage());
    } catch (const Poco::JSON::JSONException& exception) {
        trace(QString("FAST version JSONException %1").arg(VersionJsonSite));
        MDEventBus::sendMessage(MDEventBus::Error,
                                QCoreApplication::translate("fast::Fast",
                                                            "Unable to parse JSON to get FAST version: %1")
                                    .arg(text(exception.message())),
                                false);
        return std::nullopt;
    }
}

bool Fast::isKorvanePluginAvailable() const
{
    return quietGet(m_baseUrl + kApi + "plugin/" + kHostPlugin, PluginStatusCall)->getResponse() == 200;
}

std::shared_ptr<osdu::HttpResponse> Fast::getVdsList() const
{
    return tracedCall(Method::Get, m_baseUrl + kApi + "vds/", VdsListCall);
}

std::shared_ptr<osdu::HttpResponse> Fast::getFileList() const
{
    return tracedCall(Method::Get, m_baseUrl + kApi + "file/", FileListCall);
}

std::optional<VdsInfo> Fast::findVdsByUrl(const std::string& url) const
{
    const auto files = getFileList();
    const auto volumes = getVdsList();
    for (const VdsInfo& info : parseVdsInfos(volumes->getMessage(), files->getMessage())) {
        if (samePath(text(info.url), text(url)))
            return info;
    }
    return std::nullopt;
}

std::shared_ptr<osdu::HttpResponse> Fast::registerVds(const std::string& url) const
{
    const std::string body = "{ \"url\": \"" + url + "\" }";
    return tracedCall(Method::Post, m_baseUrl + kApi + "vds/", RegisterVdsCall, body);
}

std::shared_ptr<osdu::HttpResponse> Fast::mountFile(const std::string& vdsId, const std::string& fileName,
                                                    const std::string& linkPath, std::int32_t dim0Min,
                                                    std::int32_t dim0Max, std::int32_t dim1Min, std::int32_t dim1Max,
                                                    std::int32_t dim2Min, std::int32_t dim2Max) const
{
    Poco::JSON::Object::Ptr subvolume = new Poco::JSON::Object;
    subvolume->set("dim0", range(dim0Min, dim0Max));
    subvolume->set("dim1", range(dim1Min, dim1Max));
    subvolume->set("dim2", range(dim2Min, dim2Max));

    // FAST reads the link path with its separators escaped once more: each Windows separator
    // goes out doubled before the writer escapes it.
    const std::string escapedLinkPath = QString::fromStdString(linkPath).replace("\\", "\\\\").toStdString();

    Poco::JSON::Object::Ptr parameters = new Poco::JSON::Object;
    parameters->set("link_path", escapedLinkPath);
    parameters->set("shortcut_base_path", std::string());
    parameters->set("subvolume", subvolume);
    parameters->set("vds-compression-tolerance", 0);

    // Keys come out sorted: the objects are made without the insertion-order option.
    Poco::JSON::Object mount;
    mount.set("parameters", parameters);
    mount.set("path", "/" + fileName);
    mount.set("plugin", std::string(kHostPlugin));
    mount.set("vdsId", vdsId);
    std::ostringstream body;
    mount.stringify(body);

    return tracedCall(Method::Post, m_baseUrl + kApi + "file/", MountFileCall, body.str());
}

std::shared_ptr<osdu::HttpResponse> Fast::deleteFile(const std::string& fileId) const
{
    // Without an id the DELETE would name the whole collection of files.
    if (fileId.empty())
        return std::make_shared<osdu::HttpResponse>();
    return tracedCall(Method::Delete, m_baseUrl + kApi + "file/" + fileId, DeleteFileCall);
}

bool Fast::unmountVds(const std::string& vdsId, const std::vector<VdsFile>& files) const
{
    const auto answered = [this](const std::string& route, CallSite site) {
        return tracedCall(Method::Delete, m_baseUrl + kApi + route, site)->getResponse() != 0;
    };
    for (const VdsFile& file : files) {
        if (!file.fileId.empty() && !answered("file/" + file.fileId, UnmountFileCall))
            return false;
    }
    return vdsId.empty() || answered("vds/" + vdsId, UnmountVolumeCall);
}

SubvolumeRange Fast::getPluginDescription(const std::string& pluginName, const std::string& vdsId) const
{
    const auto response = tracedCall(Method::Get, m_baseUrl + kApi + "plugin/" + pluginName + "?vdsId=" + vdsId,
                                     PluginDescriptionCall);
    if (response->getResponse() != 200) {
        // Its text ends up in what the page tells the user.
        throw std::runtime_error(
            QCoreApplication::translate("fast::Fast", "HTTP request failed with status=%1, message=%2")
                .arg(QString::number(response->getResponse()), text(response->getMessage()))
                .toStdString());
    }
    return parseSubvolumeRange(response->getMessage());
}

} // namespace fast
