// The law of comments: what an editor colours as a comment is what the program strips, and nothing else.
import assert from 'node:assert/strict';
import test from 'node:test';
import { quotingTrials, trialsOfExamples, valueBefore } from './comments.mjs';
import { faces } from './emacs.mjs';
import { holds, loadGrammar, tokenize } from './tokens.mjs';
import { syntaxGroups } from './vim.mjs';

/// For each { path, text, number }: the column at which the comment of that line begins, or -1.
const colourings = {
  textmate: async (trials) => {
    const grammar = await loadGrammar();
    return trials.map(({ text, number }) =>
      tokenize(grammar, text)[number].tokens.find(({ scopes }) => holds(scopes, 'comment'))?.begin ?? -1);
  },
  vim: async (trials) =>
    syntaxGroups(trials).map((row) => row.findIndex((groups) => groups.some((name) => name.endsWith('Comment')))),
  emacs: async (trials) => faces(trials).map((row) => row.findIndex((names) => names.some((name) => name.includes('comment')))),
};

/// An editor that needs seconds for what another does in milliseconds takes every n-th trial. The trials come in groups
/// of five, so no kind of them is left out.
const shares = { textmate: 1, vim: 4, emacs: 1 };

const trials = await trialsOfExamples();
const puzzles = quotingTrials(3000);

test('the trials are many and of both kinds', () => {
  const comments = trials.filter(({ comment }) => comment).length;
  console.log(`# ${comments} comments, ${trials.length - comments} marks in text`);
  assert.ok(comments > 4000 && trials.length - comments > 600);
  assert.ok(puzzles.some(({ line, kept }) => valueBefore(line, -1) !== kept));
  assert.ok(puzzles.some(({ line, kept }) => line.includes(' #') && valueBefore(line, -1) === kept));
});

for (const [editor, colour] of Object.entries(colourings)) {
  test(`${editor}: comments of the examples`, async () => {
    const chosen = trials.filter((_, i) => i % shares[editor] === 0);
    const begins = await colour(chosen);
    const faults = chosen.flatMap(({ path, number, line, change, column, comment }, i) =>
      (begins[i] !== -1 && begins[i] <= column) === comment ? [] :
        [`${path}:${number + 1}: ${change}, ${comment ? 'not ' : ''}coloured as a comment: ${line}`]);
    assert.deepEqual(faults, []);
  });
  test(`${editor}: quotes hide a comment exactly where they do for the program`, async () => {
    const chosen = puzzles.filter((_, i) => i % shares[editor] === 0);
    const begins = await colour(chosen);
    assert.deepEqual(chosen.flatMap(({ line, kept }, i) =>
      valueBefore(line, begins[i]) === kept ? [] : [{ line, kept, begin: begins[i] }]), []);
  });
}
