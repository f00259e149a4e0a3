#pragma once

#include "core/JsonCodec.h"

#include <QtGlobal>

namespace velmora {

// What one process, one application or the whole machine used: CPU in whole cores (1.0 = one core
// busy), resident memory, and the bytes it moved during the last sampling interval.
struct ResourceUsage {
    double usedCPUs = 0;
    qint64 usedMemoryBytes = 0;
    qint64 uploadedBytes = 0;
    qint64 downloadedBytes = 0;

    qint64 totalNetworkBytes() const { return uploadedBytes + downloadedBytes; }
    void add(const ResourceUsage& other) {
        usedCPUs += other.usedCPUs;
        usedMemoryBytes += other.usedMemoryBytes;
        uploadedBytes += other.uploadedBytes;
        downloadedBytes += other.downloadedBytes;
    }
    bool operator==(const ResourceUsage&) const = default;
};

void to_json(Json& j, const ResourceUsage& u);
void from_json(const Json& j, ResourceUsage& u);

} // namespace velmora
