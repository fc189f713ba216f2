// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/connectionTable.h"
#include "server/http/request.h"
#include "server/storeThreads.h"

#include <prometheus/counter.h>
#include <prometheus/family.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

/// What waits and what is open at the moment of a look, on the thread of the loop.
struct serverLoad {
    storeThreads::backlog database;
    int workers = 0; ///< forms that wait for a worker or are with one
    const connectionTable &connections;
};

/// What a server counts of itself, for Prometheus. Labels are words of this program and never come
/// from outside. May be called on any thread.
class serverMetrics
{
public:
    serverMetrics();

    void answered(const answeredRequest &request);
    /// @p kind is that of an uploadRefusal.
    void refused(const char *kind);
    void databaseFailed(storeThreads::work kind);
    /// Nothing if the database does not answer.
    void setUploads(const std::optional<uploadCounts> &counts);

    /// All of it in Prometheus' text format, version 0.0.4.
    std::string text(const serverLoad &now);

private:
    template <typename Metric> using family = prometheus::Family<Metric>;
    /// What counts the answers to one action with one status.
    struct answerSeries {
        prometheus::Counter *number = nullptr;
        prometheus::Histogram *duration = nullptr;
    };

    answerSeries seriesOf(const char *action, int status);

    prometheus::Registry registry;
    family<prometheus::Counter> &requests;
    family<prometheus::Histogram> &durations;
    family<prometheus::Counter> &refusals;
    family<prometheus::Counter> &databaseErrors;
    family<prometheus::Gauge> &connections;
    family<prometheus::Gauge> &queues;
    family<prometheus::Gauge> &uploads;
    std::mutex mutex;
    /// Found sooner than in their families, as they are for each answer.
    std::map<std::pair<const char *, int>, answerSeries> answers;
};
