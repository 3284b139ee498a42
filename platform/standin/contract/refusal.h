// What the stand-in answers when it refuses a call, beside the contract's own codes.
#pragma once

#include <cstdint>

namespace standin {

enum Refusal : uint32_t {
    NullArgument = 2001,
    UnknownHandle = 2002,  // null, closed, of another kind, or not ours at all
    WrongOrder = 2003,     // a call that is not due in the state of its session
    UnknownMode = 2004,    // OrmInit, OrmPrepare, OrmSubExtractData
    UnknownTable = 2005,
    UnknownKey = 2006,  // also a key member
    UnknownField = 2007,
    WrongSize = 2008,  // of a key, a record or a field
    BadKeyValue = 2009,
    BadCondition = 2010,
    NoSuchItem = 2011,
    BadDefinition = 2012,  // of a subscription
    NotWatched = 2013,     // the control function did not take the descriptor
    UnknownDescriptor = 2014,
    OutOfResources = 2015,  // memory, descriptors or session handles
};

}  // namespace standin
