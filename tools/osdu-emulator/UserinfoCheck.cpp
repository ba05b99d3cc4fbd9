#include "UserinfoCheck.h"

#include <Poco/Exception.h>
#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/NullStream.h>
#include <Poco/StreamCopier.h>
#include <Poco/URI.h>

namespace emulator {

bool acceptedByUserinfo(const std::string& userinfoUrl, const std::string& accessToken)
{
    try {
        const Poco::URI uri(userinfoUrl);
        Poco::Net::HTTPClientSession session(uri.getHost(), uri.getPort());
        session.setTimeout(Poco::Timespan(10, 0));
        Poco::Net::HTTPRequest request(Poco::Net::HTTPRequest::HTTP_GET, uri.getPathAndQuery(),
                                       Poco::Net::HTTPMessage::HTTP_1_1);
        request.set("Authorization", "Bearer " + accessToken);
        session.sendRequest(request);
        Poco::Net::HTTPResponse response;
        Poco::NullOutputStream ignored;
        Poco::StreamCopier::copyStream(session.receiveResponse(response), ignored);
        return response.getStatus() == Poco::Net::HTTPResponse::HTTP_OK;
    } catch (const Poco::Exception&) {
        return false;
    }
}

} // namespace emulator
