// Hooks that once printed a row. Nothing calls them, and modules may.
#include <tarnd_qrb/change_detection.h>

void QRB_EVENT_PrintIfLink(const QRB_IF_LINK_S* /*row*/) {}
void QRB_EVENT_PrintIfPhy(const QRB_IF_PHY_S* /*row*/) {}
void QRB_EVENT_PrintIfRoute(const QRB_IF_ROUTE_S* /*row*/) {}
void QRB_EVENT_PrintPort(const QRB_PORT_S* /*row*/) {}
