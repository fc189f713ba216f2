// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/asio.h"
#include "server/http/networks.h"

#include <array>
#include <cstddef>
#include <list>
#include <map>

/// What a connection is about, in the order in which it gives way to others.
enum class activity { closing, idle, reading, writing, working };

/// How far a request or an answer has come.
struct transfer {
    steadyClock::time_point begun;
    steadyClock::time_point latest; ///< when bytes last moved
    std::size_t bytes = 0;

    /// Whether it gets nowhere: nothing has moved for a moment, or little altogether.
    bool isStalled(steadyClock::time_point now) const;
};

/// A connection as the table sees it.
class guest
{
public:
    /// @p from is the one that its connection counts for.
    explicit guest(const ipAddress &from) : account(from) {}
    guest(const guest &) = delete;
    guest &operator=(const guest &) = delete;
    virtual ~guest() = default;

    /// Closes the connection at once, and takes it out of the table.
    virtual void giveWay() = 0;
    /// Whether bytes have come that nobody has read yet.
    virtual bool hasUnreadBytes() const = 0;

protected:
    transfer current; ///< of the request or the answer

private:
    friend class connectionTable;

    ipAddress account;
    activity present = activity::idle;
    std::list<guest *>::iterator place;
};

/// All connections of a server, and who gives way when there are too many: those that are being
/// closed, then idle ones, then those whose request or answer gets nowhere, each time the one that
/// has been so for the longest. A request that makes progress never does.
class connectionTable
{
public:
    /// For at most @p connections, and @p connectionsOfOne of one account.
    connectionTable(std::size_t connections, std::size_t connectionsOfOne)
        : limit(connections),
          limitOfOne(connectionsOfOne)
    {
    }

    void enter(guest &newOne);
    void leave(guest &one);
    void begin(guest &one, activity next);

    /// Makes room for one more, if need be. False if nobody can give way.
    bool makeRoom(steadyClock::time_point now);
    /// Makes room for one more of @p account.
    bool makeRoomOf(const ipAddress &account, steadyClock::time_point now);

    std::size_t size() const { return count; }
    std::size_t size(activity of) const { return listOf(of).size(); }
    /// Closes all that are idle or being closed.
    void closeIdle();

private:
    using guests = std::list<guest *>;

    guests &listOf(activity of) { return lists.at(static_cast<std::size_t>(of)); }
    const guests &listOf(activity of) const { return lists.at(static_cast<std::size_t>(of)); }
    /// Whoever gives way first, of those that count for @p account, or of all.
    guest *weakest(const ipAddress *account, steadyClock::time_point now) const;

    std::size_t limit;
    std::size_t limitOfOne;
    std::size_t count = 0;
    std::array<guests, 5> lists; ///< by activity, the oldest first
    std::map<ipAddress, std::size_t> counts;
};
