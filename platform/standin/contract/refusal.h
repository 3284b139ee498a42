// Result codes with which the stand-in refuses a call, in addition to the contract's codes.
#pragma once

#include <cstdint>

namespace standin {

enum Refusal : uint32_t {
    NullArgument = 2001,
    UnknownHandle = 2002,  // null, closed, of another kind, or invalid
    WrongOrder = 2003,     // a call that is not allowed in the state of the session
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
