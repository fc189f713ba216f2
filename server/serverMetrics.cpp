// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverMetrics.h"

#include <prometheus/text_serializer.h>

namespace
{

using prometheus::Registry;

/// From what one look at memory takes to the longest that a request may last; in seconds.
const prometheus::Histogram::BucketBoundaries durationBounds = {
    0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1, 2.5, 5, 10};

constexpr std::pair<activity, const char *> activities[] = {
    {activity::idle, "idle"},       {activity::reading, "reading"}, {activity::working, "working"},
    {activity::writing, "writing"}, {activity::closing, "closing"},
};

const char *const uploadStates[] = {"received", "published", "held", "withdrawn"};

template <typename Builder>
auto &registered(Registry &registry, Builder builder, const char *name, const char *help)
{
    return builder.Name(name).Help(help).Register(registry);
}

prometheus::Family<prometheus::Counter> &counters(Registry &registry, const char *name,
                                                  const char *help)
{
    return registered(registry, prometheus::BuildCounter(), name, help);
}

prometheus::Family<prometheus::Gauge> &gauges(Registry &registry, const char *name,
                                              const char *help)
{
    return registered(registry, prometheus::BuildGauge(), name, help);
}

} // namespace

serverMetrics::serverMetrics()
    : requests(counters(registry, "fennick_requests_total", "Requests that were answered.")),
      durations(registered(registry, prometheus::BuildHistogram(),
                           "fennick_request_duration_seconds",
                           "From the first byte of a request to the first of its answer.")),
      refusals(counters(registry, "fennick_upload_refusals_total",
                        "Uploads that were refused for what they are.")),
      databaseErrors(counters(registry, "fennick_database_errors_total",
                              "Calls of the database that have failed, first tries too.")),
      connections(gauges(registry, "fennick_connections", "Connections that are open.")),
      queues(gauges(registry, "fennick_queue_length", "What waits for its turn.")),
      uploads(gauges(registry, "fennick_uploads", "Uploads in the database."))
{
    // There from the start, so that the first error is seen as one more.
    for (const char *work : {"reading", "writing"})
        databaseErrors.Add({{"work", work}});
}

void serverMetrics::answered(const answeredRequest &request)
{
    const answerSeries own = seriesOf(request.topic ? request.topic : "none", request.status);
    own.number->Increment();
    own.duration->Observe(std::chrono::duration<double>(request.taken).count());
}

serverMetrics::answerSeries serverMetrics::seriesOf(const char *action, int status)
{
    const std::lock_guard lock(mutex);
    answerSeries &own = answers[{action, status}];
    if (!own.number) {
        own.number = &requests.Add({{"action", action}, {"status", std::to_string(status)}});
        own.duration = &durations.Add({{"action", action}}, durationBounds);
    }
    return own;
}

void serverMetrics::refused(const char *kind)
{
    refusals.Add({{"reason", kind}}).Increment();
}

void serverMetrics::databaseFailed(storeThreads::work kind)
{
    const bool isReading = kind == storeThreads::work::reading;
    databaseErrors.Add({{"work", isReading ? "reading" : "writing"}}).Increment();
}

void serverMetrics::setUploads(const std::optional<uploadCounts> &counts)
{
    for (const char *state : uploadStates) {
        prometheus::Gauge &gauge = uploads.Add({{"state", state}});
        if (counts)
            gauge.Set(static_cast<double>(counts->value(QLatin1String(state))));
        else
            uploads.Remove(&gauge);
    }
}

std::string serverMetrics::text(const serverLoad &now)
{
    for (const auto &[kind, name] : activities)
        connections.Add({{"state", name}}).Set(static_cast<double>(now.connections.size(kind)));
    const std::pair<const char *, std::size_t> lengths[] = {
        {"reads", now.database.reads},
        {"writes", now.database.writes},
        {"checks", now.database.checks},
        {"forms", static_cast<std::size_t>(now.workers)},
    };
    for (const auto &[name, length] : lengths)
        queues.Add({{"queue", name}}).Set(static_cast<double>(length));
    return prometheus::TextSerializer().Serialize(registry.Collect());
}
