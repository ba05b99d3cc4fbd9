#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace osdu {
class HttpResponse;
}

namespace fast {

// The settings keys, in the group "FAST", of where the service is: its host (default
// "localhost"), its port (default "27182") and the root of its virtual drive (default "K:").
FASTPANEL_EXPORT extern const std::string FAST_GROUP;
FASTPANEL_EXPORT extern const std::string FAST_HOST;
FASTPANEL_EXPORT extern const std::string FAST_PORT;
FASTPANEL_EXPORT extern const std::string FAST_MOUNT_POINT;

// The client of the FAST service. Every call is synchronous, over plain HTTP, with a fresh
// session and no time-out; status 0 in a response means the service could not be reached. The
// object holds only its base URL, so several threads may use one client at once.
//
// Each request leaves trace lines (MDEventBus::Trace) on the host's event bus: the request line before
// the call and the response line after it. The two status calls, which the connection worker
// makes every five seconds, stay silent on success and send both lines after a failed call.
class FASTPANEL_EXPORT Fast
{
public:
    // The base URL is "http://" + host + ":" + the "FAST/FAST_PORT" setting (default "27182"),
    // used as they stand.
    explicit Fast(const std::string& host);

    // The host's plug-in in FAST: mounts are made for it, and it describes a volume's extent.
    static constexpr const char* kHostPlugin = "Korvane";

    const std::string& baseUrl() const { return m_baseUrl; }

    std::shared_ptr<osdu::HttpResponse> getAbout() const;
    // The service's version text; engaged (possibly empty) exactly when the service answered
    // 200 with JSON. Throws Poco::BadCastException when that JSON is not an object.
    std::optional<std::string> getVersion() const;
    bool isKorvanePluginAvailable() const;

    std::shared_ptr<osdu::HttpResponse> getVdsList() const;
    std::shared_ptr<osdu::HttpResponse> getFileList() const;
    // The registered volume whose url names the same file as url (samePath). Parsing errors pass
    // through.
    std::optional<VdsInfo> findVdsByUrl(const std::string& url) const;
    // The body is assembled as text; the URL is not escaped.
    std::shared_ptr<osdu::HttpResponse> registerVds(const std::string& url) const;
    std::shared_ptr<osdu::HttpResponse> mountFile(const std::string& vdsId, const std::string& fileName,
                                                  const std::string& linkPath, std::int32_t dim0Min,
                                                  std::int32_t dim0Max, std::int32_t dim1Min, std::int32_t dim1Max,
                                                  std::int32_t dim2Min, std::int32_t dim2Max) const;
    // An empty id sends nothing and answers status 0: the DELETE would name the whole collection.
    std::shared_ptr<osdu::HttpResponse> deleteFile(const std::string& fileId) const;
    // Deletes each file, whatever FAST answers, then the volume itself; empty ids are skipped.
    // False as soon as a request gets no answer at all (status 0), with the rest left unasked:
    // FAST is not there to take them.
    bool unmountVds(const std::string& vdsId, const std::vector<VdsFile>& files) const;
    // Throws std::runtime_error "HTTP request failed with status=S, message=BODY" on a status
    // other than 200; parsing errors pass through.
    SubvolumeRange getPluginDescription(const std::string& pluginName, const std::string& vdsId) const;

private:
    std::string m_baseUrl;
};

} // namespace fast
