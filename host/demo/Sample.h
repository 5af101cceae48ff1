#pragma once

#include "automation/Object.h"

// A connection object that needs neither server nor driver: the tables, views and columns of a small shop, and no rows.
// It has the members that the editor asks for, and no Execute: its status text says so.
Object MakeSampleConnection();
