/// @file
/// The interface through which a program follows the progress of long operations.
/// Receivers are registered with subscribe() of the object that does the work, for example Kelm_2D.
#pragma once

#include <kelm25d/export.h>

#include <string>

namespace QUOR_KELM25D {

/// What a message is about. The values are fixed.
enum MsgType {
    MSG_PROGRESS = 0 ///< an operation has moved on; the value is the fraction done, from 0.0 to 1.0
};

/// A receiver of progress messages; derive from it and override update().
///
/// The library never owns a receiver: the caller keeps it alive until it is unsubscribed or the object it is
/// subscribed to is gone. The class has no data, so copying a receiver does not copy its subscriptions.
class KELM25D_API MsgBase {
public:
    virtual ~MsgBase() = default;

    /// Called on the thread that runs the operation, between two of its steps, at most about 100 times a
    /// task.
    ///
    /// It should return quickly and must not change the object that is at work. It may unsubscribe itself or
    /// others; whoever is unsubscribed gets no further call.
    /// @param msgType MSG_PROGRESS
    /// @param s what is being done; may be empty
    /// @param value the fraction done: rising within a task, exactly 1.0 at its end
    virtual void update(MsgType msgType, const std::string& s, double value) = 0;
};

} // namespace QUOR_KELM25D
