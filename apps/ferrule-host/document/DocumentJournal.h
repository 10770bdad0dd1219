#pragma once

#include "io/RecoveryJournal.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace ferrule {

class SystemDocument;

// A document's recovery journal: its unsaved changes kept after each gesture, so that they
// survive the death of the process, and offered back on the next start. A write waits for the
// event loop (a zero timer), never inside a paint or a gesture, and however many changes come
// before it, it is one write.
class DocumentJournal : public QObject {
    Q_OBJECT
public:
    explicit DocumentJournal(const QString& folder = RecoveryJournal::defaultFolder(),
                             QObject* parent = nullptr);
    // A write still pending is made: nothing waits to be lost.
    ~DocumentJournal() override;

    // Keeps `image` as the unsaved state of `document`, soon. When the image is the document's
    // own and the document has no changes, there is nothing to keep and the journal goes.
    void keep(const SystemDocument& document, const QByteArray& image);
    // The changes were saved or discarded: the journal goes.
    void drop();
    // Makes a pending write now.
    void flush();

    // A journal an earlier run left for `document` (not one of a ferrule-host that runs and
    // holds the file's lock): asked about with the question's text
    // (true: Recover). Recover gives the document the journal's image, unsaved; Discard removes
    // the journal. True when the document was recovered.
    using Ask = std::function<bool(const QString& question)>;
    bool offerRecovery(SystemDocument& document, const Ask& ask);

    const RecoveryJournal& journal() const { return journal_; }

private:
    struct Key {
        QString path;
        int model = 0;
        bool operator==(const Key&) const = default;
    };
    static Key keyOf(const SystemDocument& document);
    void removeKept();

    RecoveryJournal journal_;
    QTimer timer_;
    JournalEntry pending_;
    bool waiting_ = false; // pending_ is not on the disk yet
    // The journal this object wrote or recovered from, if it is on the disk.
    std::optional<Key> kept_;
    bool warned_ = false;
};

} // namespace ferrule
