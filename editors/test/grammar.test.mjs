// The TextMate grammar: real tokens against what the program reads.
import assert from 'node:assert/strict';
import test from 'node:test';
import { requireCommentsOfExamples, requireCommentsOfPuzzles } from './comments.mjs';
import { holds, loadGrammar, scopesAt, tokenize } from './tokens.mjs';

const grammar = await loadGrammar();

const commentBegin = ({ tokens }) =>
  tokens.find(({ scopes }) => holds(scopes, 'comment'))?.begin ?? -1;
const colour = async (texts) => texts.map((text) => tokenize(grammar, text).map(commentBegin));

test('comments of the examples are what the program strips', async () => {
  const seen = await requireCommentsOfExamples(colour);
  console.log(`# ${seen.comment} comments, ${seen.text} marks in text`);
  assert.ok(seen.comment > 1000 && seen.text > 500);
});

test('quotes hide a comment exactly where they do for the program', () =>
  requireCommentsOfPuzzles(colour, 3000));
