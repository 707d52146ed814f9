// Reads SQL Server statements, one a line, and answers each with one line: "ok", or where the grammar of T-SQL
// stops to understand it.
'use strict';

const fs = require('fs');
const { antlr4tsSQL, SQLDialect } = require('antlr4ts-sql');

const grammar = new antlr4tsSQL(SQLDialect.TSQL);

function check(statement) {
  const errors = [];
  const listener = {
    syntaxError: (recognizer, token, line, column, message) => errors.push(`${column}: ${message.slice(0, 80)}`),
  };
  const parser = grammar.getParser(grammar.getTokens(statement, [listener]), [listener]);
  grammar.getParseTree(parser);
  return errors.length === 0 ? 'ok' : errors.join('; ');
}

const statements = fs.readFileSync(0, 'utf8').split('\n').filter((line) => line !== '');
for (const statement of statements) console.log(check(statement).replace(/\s+/g, ' '));
