// Generated from orders.xsd: every class of the schema.
#ifndef ORDERS_ORDERSBINDING_H
#define ORDERS_ORDERSBINDING_H

#include "Address.h"
#include "Customer.h"
#include "Item.h"
#include "Order.h"
#include "OrderStatus.h"
#include "Orders.h"
#include "OrdersNamespace.h"

#endif
