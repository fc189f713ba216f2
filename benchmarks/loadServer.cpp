// SPDX-License-Identifier: GPL-3.0-or-later

// Loads a result database on loopback for a while and prints what it answered:
//   load-server PORT version|list|upload CONNECTIONS REQUESTS|SECONDSs [SLOW]
// CONNECTIONS clients at once, each with one connection that it keeps; in all so many requests, or
// for so many seconds. SLOW more connections send a byte of a request now and then meanwhile.

#include "data/formBody.h"
#include "tests/suiteFacts.h"

#include <QByteArray>
#include <QVector>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using clockType = std::chrono::steady_clock;

int connected(int port)
{
    const int handle = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int yes = 1;
    setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const timeval patience{30, 0};
    setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (::connect(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return handle;
    ::close(handle);
    return -1;
}

std::string request(const QByteArray &body)
{
    return "POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
           "application/x-www-form-urlencoded\r\nContent-Length: "
           + std::to_string(body.size()) + "\r\n\r\n" + body.toStdString();
}

/// A full run of a machine that nobody else has uploaded.
QByteArray results(int number)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Fennick>\n    <bench "
                     "machineName=\"machine "
                     + QByteArray::number(number) + "\" os=\"linux\" cpu=\"Processor "
                     + QByteArray::number(number % 500)
                     + "\" clock=\"3000000000\" threadCount=\"8\">\n";
    for (const testFacts &test : suiteFacts()) {
        if (test.isInFullRuns())
            xml += QByteArray("        <test name=\"") + test.name + "\" result=\""
                   + QByteArray::number(10 + number % 97) + ".125\"/>\n";
    }
    return xml + "    </bench>\n</Fennick>\n";
}

/// Reads one response with a length; its status, or -1.
int readResponse(int handle, std::string &buffer)
{
    buffer.clear();
    std::size_t wanted = std::string::npos;
    char piece[65536];
    while (buffer.size() < wanted) {
        const ssize_t size = ::recv(handle, piece, sizeof piece, 0);
        if (size <= 0)
            return -1;
        buffer.append(piece, static_cast<std::size_t>(size));
        const std::size_t end = buffer.find("\r\n\r\n");
        const std::size_t length = buffer.find("Content-Length: ");
        if (wanted == std::string::npos && end != std::string::npos && length < end)
            wanted = end + 4 + std::stoul(buffer.substr(length + 16));
    }
    return std::stoi(buffer.substr(9, 3));
}

struct load {
    int port = 0;
    std::string kind;
    long requests = 0; ///< or
    double seconds = 0;
    std::atomic<long> begun = 0;
    std::atomic<long> failed = 0;
    std::atomic<bool> isOver = false;
    clockType::time_point end;
    int firstUpload = 0;

    bool mayGoOn() { return seconds > 0 ? clockType::now() < end : begun.fetch_add(1) < requests; }
};

/// The milliseconds of each request of one client.
std::vector<float> runClient(load &work)
{
    static std::atomic<int> uploads = 0;
    const QByteArray type = work.kind == "version" ? "getReferenceVersion" : "getReference";
    std::string text = request(formBody({{"app", "Fennick"}, {"type", type}}));
    std::string buffer;
    std::vector<float> times;
    int handle = connected(work.port);
    while (work.mayGoOn()) {
        if (work.kind == "upload") {
            text = request(formBody({{"app", "Fennick"},
                                     {"type", "storeUserData"},
                                     {"results", results(work.firstUpload + ++uploads)}}));
        }
        const auto start = clockType::now();
        if (handle < 0)
            handle = connected(work.port);
        const bool isDone = handle >= 0
                            && ::send(handle, text.data(), text.size(), MSG_NOSIGNAL) > 0
                            && readResponse(handle, buffer) == 200;
        if (!isDone) {
            ++work.failed;
            ::close(handle);
            handle = -1;
            continue;
        }
        times.push_back(std::chrono::duration<float, std::milli>(clockType::now() - start).count());
        if (buffer.find("Connection: close") != std::string::npos) {
            ::close(handle);
            handle = -1;
        }
    }
    ::close(handle);
    return times;
}

/// Keeps a connection busy with a request that never ends.
void dawdle(load &work)
{
    while (!work.isOver) {
        const int handle = connected(work.port);
        while (!work.isOver && handle >= 0 && ::send(handle, "G", 1, MSG_NOSIGNAL) == 1)
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        ::close(handle);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 5) {
        std::fprintf(stderr, "usage: load-server PORT version|list|upload CONNECTIONS "
                             "REQUESTS|SECONDSs [SLOW]\n");
        return 2;
    }
    load work;
    work.port = std::stoi(argv[1]);
    work.kind = argv[2];
    const int connections = std::stoi(argv[3]);
    const std::string amount = argv[4];
    if (amount.back() == 's')
        work.seconds = std::stod(amount);
    else
        work.requests = std::stol(amount);
    const int slow = argc > 5 ? std::stoi(argv[5]) : 0;
    work.firstUpload = static_cast<int>(std::chrono::system_clock::now().time_since_epoch()
                                        / std::chrono::seconds(1) % 1000 * 1'000'000);

    std::vector<std::thread> slowOnes;
    slowOnes.reserve(static_cast<std::size_t>(slow));
    for (int i = 0; i < slow; ++i)
        slowOnes.emplace_back([&work] { dawdle(work); });
    if (slow > 0)
        std::this_thread::sleep_for(std::chrono::seconds(1));

    const auto start = clockType::now();
    work.end = start
               + std::chrono::duration_cast<clockType::duration>(
                   std::chrono::duration<double>(work.seconds));
    std::vector<std::vector<float>> perClient(static_cast<std::size_t>(connections));
    std::vector<std::thread> clients;
    clients.reserve(perClient.size());
    for (std::vector<float> &own : perClient)
        clients.emplace_back([&work, &own] { own = runClient(work); });
    for (std::thread &client : clients)
        client.join();
    const double spent = std::chrono::duration<double>(clockType::now() - start).count();
    work.isOver = true;
    for (std::thread &one : slowOnes)
        one.join();

    std::vector<float> times;
    for (const std::vector<float> &own : perClient)
        times.insert(times.end(), own.begin(), own.end());
    std::sort(times.begin(), times.end());
    const auto percentile = [&times](double share) {
        return times.empty() ? 0.0
                             : static_cast<double>(
                                 times[static_cast<std::size_t>(share * double(times.size() - 1))]);
    };
    std::printf("%-8s %3d connections, %3d slow: %7zu in %6.2f s = %8.0f /s, median %.2f ms, p99 "
                "%.2f ms, longest %.1f ms, failed %ld\n",
                argv[2], connections, slow, times.size(), spent, double(times.size()) / spent,
                percentile(0.5), percentile(0.99), percentile(1), work.failed.load());
    return work.failed == 0 ? 0 : 1;
}
