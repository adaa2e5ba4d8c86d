#include "lumora/qtsql/reservedwords.h"

#include "lumora/platform/ascii.h"

#include <string>

namespace lumora {

namespace {

// A blank before and behind each word.
constexpr std::string_view commonWords =
    " abort action add after all alter always analyse analyze and any array as asc asymmetric attach"
    " authorization autoincrement before begin between binary both by cascade case cast check collate"
    " collation column commit concurrently conflict constraint create cross current current_catalog"
    " current_date current_role current_schema current_time current_timestamp current_user database"
    " default deferrable deferred delete desc describe detach distinct do drop each else end escape"
    " except exclude exclusive exists explain fail false fetch filter first following for foreign freeze"
    " from full generated glob grant group groups having if ignore ilike immediate in index indexed"
    " initially inner insert instead intersect into is isnull join key last lateral leading left like"
    " limit localtime localtimestamp lock match materialized natural no not nothing notnull null nulls"
    " of offset on only or order others outer over overlaps partition placing plan pragma preceding"
    " primary query raise range recursive references regexp reindex release rename replace restrict"
    " returning right rollback row rows savepoint select session_user set similar some symmetric"
    " system_user table tablesample temp temporary then ties to trailing transaction trigger true"
    " unbounded union unique update user using vacuum values variadic verbose view virtual when where"
    " window with without ";

// What MariaDB 10.11 and MySQL 8 reserve beyond those.
constexpr std::string_view mySqlWords =
    " accessible asensitive bigint blob call change char character condition continue convert cube"
    " cume_dist cursor databases day_hour day_microsecond day_minute day_second dec decimal declare"
    " delayed delete_domain_id dense_rank deterministic distinctrow div do_domain_ids double dual elseif"
    " empty enclosed escaped exit first_value float float4 float8 force fulltext function get grouping"
    " high_priority hour_microsecond hour_minute hour_second ignore_domain_ids infile inout insensitive"
    " int int1 int2 int3 int4 int8 integer interval io_after_gtids io_before_gtids iterate json_table"
    " keys kill lag last_value lead leave library linear lines load long longblob longtext loop"
    " low_priority manual master_bind master_demote_to_replica master_demote_to_slave"
    " master_ssl_verify_server_cert maxvalue mediumblob mediumint mediumtext middleint"
    " minute_microsecond minute_second mod modifies no_write_to_binlog nth_value ntile numeric optimize"
    " optimizer_costs optionally out outfile page_checksum parallel parse_vcol_expr percent_rank portion"
    " precision procedure purge qualify rank read read_write reads real ref_system_id repeat require"
    " resignal return revoke rlike row_number schemas second_microsecond sensitive separator show signal"
    " smallint spatial specific sql sql_big_result sql_buffer_result sql_cache sql_calc_found_rows"
    " sql_no_cache sql_small_result sqlexception sqlstate sqlwarning ssl starting stats_auto_recalc"
    " stats_persistent stats_sample_pages stored straight_join system terminated tinyblob tinyint"
    " tinytext undo unlock unsigned usage use utc_date utc_time utc_timestamp varbinary varchar"
    " varcharacter varying while write xor year_month zerofill ";

} // namespace

bool isReservedWord(Engine engine, std::string_view word) {
    const std::string wanted = ' ' + LowerAscii(word) + ' ';
    return commonWords.find(wanted) != std::string_view::npos ||
           (engine == Engine::MySql && mySqlWords.find(wanted) != std::string_view::npos);
}

} // namespace lumora
