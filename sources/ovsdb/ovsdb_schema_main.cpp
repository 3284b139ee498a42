// Prints the schema of the database on the servers: data/tarnd_qrb.ovsschema is its output.
#include <iostream>

#include "sources/ovsdb/ovsdb_schema.h"

int main()
{
    std::cout << sources::ovsdb::Schema().dump(2) << '\n';
}
