// The visible rows of a table, tree or list that makes its cells on demand.
#pragma once

namespace tarvix::atspi {

class TreeFetch;

// Never costs more than the rows that show, however many the table has: hit tests near its upper and lower edge tell
// the rows and columns between which everything lies, and only those cells are visited.
class ManagedTable {
public:
    static void fetch(TreeFetch& fetch, int index);
};

}  // namespace tarvix::atspi
