#include "TransmissionSchedule.h"

#include "ModelDescription.h"

#include <algorithm>
#include <numeric>

namespace ferrule {

void SplitNibbles(QByteArray& destination, ImageBytes image, int start, int count) {
    for (int i = 0; i < count; ++i) {
        const int byte = image[std::size_t(start + i)];
        destination.append(char(byte >> 4));
        destination.append(char(byte & 15));
    }
}

QByteArray ScheduledMessage::data(ImageBytes image) const {
    QByteArray out;
    if (nibbles) {
        out.reserve(2 * length);
        SplitNibbles(out, image, start, length);
    } else {
        out.reserve(length);
        for (int i = 0; i < length; ++i)
            out.append(char(image[std::size_t(start + i)]));
    }
    return out;
}

namespace {

void appendRow(std::vector<ScheduledMessage>& out, const ScheduleRow& r, int k) {
    switch (r.shape) {
    case ScheduleShape::Blocks:
        for (int i = 0; i < r.messages; ++i) {
            int address = r.address + i * r.messageAddress;
            if (r.linearSteps)
                address = AddressAdd(address, k, r.stepAddress);
            else if (r.stepsPerGroup > 0)
                address +=
                    r.stepAddress * (k % r.stepsPerGroup) + r.groupAddress * (k / r.stepsPerGroup);
            else
                address += r.stepAddress * k;
            out.push_back(
                {address, r.start + k * r.stepStride + i * r.messageStride, r.length, r.nibbles});
        }
        break;
    case ScheduleShape::EntryFields: {
        int at = r.start + k * r.stepStride;
        for (int i = 0; i < int(r.fields.size()); ++i) {
            out.push_back({r.address + k * r.stepAddress + i * r.messageAddress, at,
                           r.fields[std::size_t(i)], r.nibbles});
            at += r.fields[std::size_t(i)];
        }
        break;
    }
    case ScheduleShape::FieldOfEntries:
        for (int i = 0; i < r.messages; ++i)
            out.push_back({r.address + i * r.messageAddress + k * r.stepAddress,
                           r.start + i * r.messageStride + r.offsets[std::size_t(k)],
                           r.fields[std::size_t(k)], r.nibbles});
        break;
    case ScheduleShape::FieldMajor: {
        const int before = std::accumulate(r.fields.begin(), r.fields.begin() + k, 0);
        const int length = r.fields[std::size_t(k)];
        for (int i = 0; i < r.messages; ++i)
            out.push_back({r.address + i * r.messageAddress + k * r.stepAddress,
                           r.start + r.messages * before + i * length, length, r.nibbles});
        break;
    }
    case ScheduleShape::EntryParts: {
        const int parts = int(r.parts.size());
        const int entry = k / parts;
        const SchedulePart& part = r.parts[std::size_t(k % parts)];
        out.push_back({part.address + entry * r.stepAddress, part.start + entry * r.stepStride,
                       part.length, r.nibbles});
        break;
    }
    }
}

} // namespace

namespace TransmissionSchedule {

int stepTotal(int model) {
    int total = 0;
    for (const ScheduleRow& r : describeModel(model).schedule)
        total = std::max(total, r.last + 1);
    return total;
}

std::vector<ScheduledMessage> messages(int model, int step) {
    std::vector<ScheduledMessage> out;
    for (const ScheduleRow& r : describeModel(model).schedule)
        if (step >= r.first && step <= r.last) appendRow(out, r, step - r.first);
    return out;
}

} // namespace TransmissionSchedule
} // namespace ferrule
