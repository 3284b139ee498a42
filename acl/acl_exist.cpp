// Whether an ACL exists, by number or name, and its group id: conditional scans of "acl_group".
#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/acl.h>

#include "acl/condition.h"
#include "db/access.h"

using namespace qrb;

namespace {

constexpr uint32_t EXISTS = 1;
constexpr uint32_t ABSENT = 0;

constexpr uint32_t IPV4 = 0;  // the column isipv6
constexpr uint32_t IPV6 = 1;

constexpr size_t WIDE_CONDITION_SIZE = 128;

// How the columns of "acl_group" tell an ACL.
struct ACL_S {
    uint16_t vsid;
    uint16_t vsysid;
    uint32_t number;
    const char* name;  // null: known by its number
    uint32_t isIpv6;
};

// False when the condition does not fit.
bool Describe(const ACL_S& acl, char* condition, size_t size)
{
    const int length =
        acl.name != nullptr
            ? sprintf_s(condition, size,
                        "vsid = %u and vsysid = %u and acl_name = %s and isipv6 = %u", acl.vsid,
                        acl.vsysid, acl.name, acl.isIpv6)
            : sprintf_s(condition, size,
                        "vsid = %u and vsysid = %u and acl_number = %u and isipv6 = %u", acl.vsid,
                        acl.vsysid, acl.number, acl.isIpv6);
    return length > 0;
}

// Looks for one group and puts its id into *groupId. *matches tells whether there was one.
uint32_t FindGroup(const char* condition, uint32_t* groupId, uint32_t* matches)
{
    *matches = 0;
    return QRB_DB_Scan("acl_group", groupId, 1, ACL_DB_ScanAclGroupId, matches, condition, nullptr);
}

// What three of the four checks take for existence: that the condition fits and the scan ran.
uint32_t AnswerScanned(const ACL_S& acl, size_t capacity, uint32_t* groupId)
{
    char condition[WIDE_CONDITION_SIZE];
    uint32_t matches = 0;
    const bool scanned =
        Describe(acl, condition, capacity) && FindGroup(condition, groupId, &matches) == OK;
    return scanned ? EXISTS : ABSENT;
}

}  // namespace

uint32_t ACL_DB_ScanAclGroupId(ORM_SESSION session, void* groupId, uint32_t /*index*/)
{
    constexpr uint32_t FIELD_GROUP_ID = 0;
    return ReadField(session, FIELD_GROUP_ID, static_cast<uint32_t*>(groupId));
}

uint32_t ACL_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                    uint32_t* groupId)
{
    char condition[ACL_CONDITION_SIZE];
    if (!Describe({vsid, vsysid, aclNumber, nullptr, IPV4}, condition, sizeof(condition))) {
        return ABSENT;
    }
    uint32_t matches = 0;
    const uint32_t ret = FindGroup(condition, groupId, &matches);
    if (ret != OK || matches == 0) {
        QRB_ERROR("QRB_DB_Scan failed, ret = %u\n", ret);
        return ABSENT;
    }
    return EXISTS;
}

uint32_t ACLIPv6_IsACLNodeExistByNumber(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber,
                                        uint32_t* groupId)
{
    if (groupId == nullptr) {
        return ABSENT;
    }
    return AnswerScanned({vsid, vsysid, aclNumber, nullptr, IPV6}, WIDE_CONDITION_SIZE, groupId);
}

uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId)
{
    return AnswerScanned({vsid, vsysid, aclNumber, name, IPV4}, ACL_CONDITION_SIZE, groupId);
}

uint32_t ACLIPv6_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                         uint32_t* groupId)
{
    return AnswerScanned({vsid, vsysid, aclNumber, name, IPV6}, ACL_CONDITION_SIZE, groupId);
}
