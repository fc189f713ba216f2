// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/connectionTable.h"

namespace
{

using namespace std::chrono_literals;

/// Longer than the gaps between the packets of a client on a bad line.
constexpr auto longestPause = 250ms;
/// A request has this long to come, at whatever speed, before the slowest speed is asked for.
constexpr auto firstSecond = 1s;
constexpr double slowest = 1024; // bytes per second

} // namespace

bool transfer::isStalled(steadyClock::time_point now) const
{
    if (now - latest >= longestPause)
        return true;
    const std::chrono::duration<double> passed = now - begun;
    return passed >= firstSecond && static_cast<double>(bytes) < slowest * passed.count();
}

void connectionTable::enter(guest &newOne)
{
    guests &idle = listOf(activity::idle);
    newOne.present = activity::idle;
    newOne.place = idle.insert(idle.end(), &newOne);
    ++count;
    ++counts[newOne.account];
}

void connectionTable::leave(guest &one)
{
    listOf(one.present).erase(one.place);
    --count;
    const auto own = counts.find(one.account);
    if (--own->second == 0)
        counts.erase(own);
}

void connectionTable::begin(guest &one, activity next)
{
    guests &to = listOf(next);
    to.splice(to.end(), listOf(one.present), one.place);
    one.present = next;
}

guest *connectionTable::weakest(const ipAddress *account, steadyClock::time_point now) const
{
    const auto mayGive = [account, now](activity of, const guest &one) {
        if (account && one.account != *account)
            return false;
        if (of == activity::idle)
            return !one.hasUnreadBytes();
        return of == activity::closing || one.current.isStalled(now);
    };
    for (const activity of :
         {activity::closing, activity::idle, activity::reading, activity::writing}) {
        for (guest *one : listOf(of)) {
            if (mayGive(of, *one))
                return one;
        }
    }
    return nullptr;
}

bool connectionTable::makeRoom(steadyClock::time_point now)
{
    if (count < limit)
        return true;
    guest *one = weakest(nullptr, now);
    if (one)
        one->giveWay();
    return one != nullptr;
}

bool connectionTable::makeRoomOf(const ipAddress &account, steadyClock::time_point now)
{
    const auto own = counts.find(account);
    if (own == counts.end() || own->second < limitOfOne)
        return true;
    guest *one = weakest(&account, now);
    if (one)
        one->giveWay();
    return one != nullptr;
}

void connectionTable::closeIdle()
{
    for (const activity of : {activity::closing, activity::idle}) {
        while (!listOf(of).empty())
            listOf(of).front()->giveWay();
    }
}
