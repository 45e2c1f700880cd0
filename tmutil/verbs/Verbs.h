#pragma once

#include "tmutil/CommandLine.h"

namespace orvello::tmutil {

// What each verb does; the exit status. Problems are told on standard error.

int startBackup(const Invocation& invocation);
int stopBackup(const Invocation& invocation);
int showStatus(const Invocation& invocation);
int showVersion(const Invocation& invocation);

int setDestination(const Invocation& invocation);
int removeDestination(const Invocation& invocation);
int showDestinations(const Invocation& invocation);

int listBackups(const Invocation& invocation);
int showLatestBackup(const Invocation& invocation);
int restore(const Invocation& invocation);
int verifyChecksums(const Invocation& invocation);

int addSource(const Invocation& invocation);
int removeSource(const Invocation& invocation);
int listSources(const Invocation& invocation);
int addExclusion(const Invocation& invocation);
int removeExclusion(const Invocation& invocation);
int showExcluded(const Invocation& invocation);

} // namespace orvello::tmutil
