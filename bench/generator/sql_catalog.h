// The statements the generated session runs: application SQL at depth 0 and the recursive
// dictionary queries that Oracle 9i issues at depth 1, each with its bind count, command type
// and the row-source operations of its plan (written as STAT rows when the cursor closes).
#ifndef PELICOR_BENCH_GENERATOR_SQL_CATALOG_H_
#define PELICOR_BENCH_GENERATOR_SQL_CATALOG_H_

#include <array>
#include <string_view>

namespace tracegen {

struct SqlEntry {
  std::string_view text;  // lines separated by '\n', no final newline
  int oct;                // 2 insert, 3 select, 6 update, 47 PL/SQL block
  int binds;
  std::array<std::string_view, 4> plan;  // empty names end the plan
};

inline constexpr std::array<SqlEntry, 7> kApplicationSql = {{
    {"select c.customer_id, c.cust_first_name, c.cust_last_name, c.credit_limit\n"
     "  from customers c\n where c.customer_id = :1",
     3,
     1,
     {"TABLE ACCESS BY INDEX ROWID CUSTOMERS", "INDEX UNIQUE SCAN CUSTOMERS_PK"}},
    {"select o.order_id, o.order_date, o.order_total\n  from orders o\n"
     " where o.customer_id = :1\n   and o.order_status = :2\n order by o.order_date desc",
     3,
     2,
     {"SORT ORDER BY", "TABLE ACCESS BY INDEX ROWID ORDERS", "INDEX RANGE SCAN ORD_CUSTOMER_IX"}},
    {"insert into order_items (order_id, line_item_id, product_id, unit_price, quantity)\n"
     "values (:1, :2, :3, :4, :5)",
     2,
     5,
     {}},
    {"update inventories set quantity_on_hand = quantity_on_hand - :1\n"
     " where product_id = :2 and warehouse_id = :3",
     6,
     3,
     {"UPDATE INVENTORIES", "INDEX UNIQUE SCAN INVENTORY_PK"}},
    {"select count(*) from order_items where order_id = :1",
     3,
     1,
     {"SORT AGGREGATE", "INDEX RANGE SCAN ITEM_ORDER_IX"}},
    {"select p.product_name, p.list_price, d.translated_description\n"
     "  from product_information p, product_descriptions d\n"
     " where p.product_id = d.product_id\n   and d.language_id = :1\n   and p.category_id = :2",
     3,
     2,
     {"HASH JOIN", "TABLE ACCESS FULL PRODUCT_INFORMATION",
      "TABLE ACCESS FULL PRODUCT_DESCRIPTIONS"}},
    {"begin pkg_orders.close_order(:1); end;", 47, 1, {}},
}};

inline constexpr std::array<SqlEntry, 4> kRecursiveSql = {{
    {"select obj#,type#,ctime,mtime,stime,status,dataobj#,flags,oid$, spare1, spare2 from obj$ "
     "where owner#=:1 and name=:2 and namespace=:3 and remoteowner is null and linkname is null "
     "and subname is null",
     3,
     3,
     {"TABLE ACCESS BY INDEX ROWID OBJ$", "INDEX RANGE SCAN I_OBJ2"}},
    {"select ts#,file#,block#,nvl(bobj#,0),nvl(tab#,0),intcols,nvl(clucols,0),audit$,flags,"
     "pctfree$,pctused$,initrans,maxtrans,rowcnt,blkcnt,empcnt,avgspc,chncnt,avgrln,analyzetime, "
     "samplesize,cols,property,nvl(degree,1),nvl(instances,1),avgspc_flb,flbcnt,kernelcols,"
     "nvl(trigflag, 0),nvl(spare1,0),nvl(spare2,0),spare4,spare6 from tab$ where obj#=:1",
     3,
     1,
     {"TABLE ACCESS CLUSTER TAB$", "INDEX UNIQUE SCAN I_OBJ#"}},
    {"select order#,columns,types from access$ where d_obj#=:1",
     3,
     1,
     {"TABLE ACCESS BY INDEX ROWID ACCESS$", "INDEX RANGE SCAN I_ACCESS1"}},
    {"update seq$ set increment$=:2,minvalue=:3,maxvalue=:4,cycle#=:5,order$=:6,cache=:7,"
     "highwater=:8,audit$=:9,flags=:10 where obj#=:1",
     6,
     10,
     {"UPDATE SEQ$", "INDEX UNIQUE SCAN I_SEQ1"}},
}};

}  // namespace tracegen

#endif  // PELICOR_BENCH_GENERATOR_SQL_CATALOG_H_
