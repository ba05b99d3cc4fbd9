#include "CurlMultiplexer_p.h"

#include <curl/curl.h>

#include <map>
#include <stdexcept>

namespace osdu {

CurlMultiplexer::CurlMultiplexer() : m_multi(curl_multi_init())
{
    if (!m_multi)
        throw std::runtime_error("Unable to create an HTTP session");
    curl_multi_setopt(m_multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, kMostConnectionsPerHost);
    m_thread = std::thread([this] { run(); });
}

CurlMultiplexer::~CurlMultiplexer()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    curl_multi_wakeup(m_multi);
    m_thread.join();
    curl_multi_cleanup(m_multi);
}

int CurlMultiplexer::perform(void* easy)
{
    Transfer transfer;
    transfer.easy = easy;
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_stopping)
        return CURLE_ABORTED_BY_CALLBACK;
    m_arriving.push_back(&transfer);
    curl_multi_wakeup(m_multi);
    transfer.finished.wait(lock, [&transfer] { return transfer.done; });
    return transfer.result;
}

void CurlMultiplexer::finish(Transfer& transfer, int result)
{
    // Told under the lock: once done, the waiting thread may return and take the transfer away.
    const std::lock_guard<std::mutex> lock(m_mutex);
    transfer.result = result;
    transfer.done = true;
    transfer.finished.notify_one();
}

void CurlMultiplexer::run()
{
    std::map<CURL*, Transfer*> running;
    // An exception must not leave the thread: it ends the transfers instead.
    try {
        for (;;) {
            std::deque<Transfer*> arrived;
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (m_stopping)
                    break;
                arrived.swap(m_arriving);
            }
            for (Transfer* transfer : arrived) {
                CURL* easy = static_cast<CURL*>(transfer->easy);
                if (curl_multi_add_handle(m_multi, easy) == CURLM_OK)
                    running[easy] = transfer;
                else
                    finish(*transfer, CURLE_FAILED_INIT);
            }
            int stillRunning = 0;
            curl_multi_perform(m_multi, &stillRunning);
            int queued = 0;
            while (CURLMsg* message = curl_multi_info_read(m_multi, &queued)) {
                if (message->msg != CURLMSG_DONE)
                    continue;
                CURL* easy = message->easy_handle;
                const CURLcode result = message->data.result;
                curl_multi_remove_handle(m_multi, easy);
                const auto found = running.find(easy);
                if (found != running.end()) {
                    finish(*found->second, result);
                    running.erase(found);
                }
            }
            curl_multi_poll(m_multi, nullptr, 0, 1000, nullptr);
        }
    } catch (...) {
    }
    for (const auto& transfer : running) {
        curl_multi_remove_handle(m_multi, transfer.first);
        finish(*transfer.second, CURLE_ABORTED_BY_CALLBACK);
    }
    // Handed over while the thread was ending.
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stopping = true;
    for (Transfer* transfer : m_arriving) {
        transfer->result = CURLE_ABORTED_BY_CALLBACK;
        transfer->done = true;
        transfer->finished.notify_one();
    }
    m_arriving.clear();
}

} // namespace osdu
