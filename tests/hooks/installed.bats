# What `cmake --install` leaves for editors, hooks and pipelines works from where it is.

setup_file() {
    export PREFIX=$BATS_FILE_TMPDIR/prefix
    cmake --install "$(dirname "$MQKIT")" --prefix "$PREFIX" >/dev/null
}

setup() {
    export NO_COLOR=1
    cd "$BATS_TEST_TMPDIR"
    printf '$a\n  %%keywords k # c\n' >a.mq
}

@test "vim finds its files where a system vim looks" {
    vim -Nu NONE -i NONE -n -es --cmd "set runtimepath^=$PREFIX/share/vim/vimfiles" --cmd 'filetype plugin indent on' \
        --cmd 'syntax on' a.mq -c 'call writefile([&filetype, synIDattr(synID(2, 15, 1), "name"), &makeprg], "out")' -c 'qa!'
    [ "$(cat out)" = $'mq\nmqComment\nmqkit lint %:S' ]
    diff -r "$PREFIX/share/vim/vimfiles" "$PREFIX/share/mqkit/editors/vim"
}

@test "Neovim finds its files where a system Neovim looks, and starts the installed server" {
    printf '$a\n' >faulty.mq
    PATH=$PREFIX/bin:$PATH HOME=$PWD nvim --headless -n -i NONE -u NONE \
        --cmd "set runtimepath^=$PREFIX/share/nvim/site" --cmd 'filetype plugin on' faulty.mq -c 'lua
        local ok = vim.wait(10000, function() return #vim.diagnostic.get(0) > 0 end, 10)
        vim.fn.writefile({ vim.bo.filetype, ok and vim.diagnostic.get(0)[1].code or "nothing" }, "out")' -c 'qa!'
    [ "$(cat out)" = $'mq\nmissing-keywords' ]
}

@test "Emacs finds its mode in site-lisp" {
    run emacs -Q --batch -L "$PREFIX/share/emacs/site-lisp" --eval "(require 'mq-mode)" a.mq \
        --eval '(progn (font-lock-ensure) (princ (format "%s %s" major-mode (get-text-property 18 (quote face)))))'
    [ "$output" = "mq-mode font-lock-comment-delimiter-face" ]
}

@test "the grammars are there, without what tests and builds leave" {
    cd "$PREFIX/share/mqkit/editors"
    diff <(find . -type f | LC_ALL=C sort) - <<'TXT'
./bat/mq.sublime-syntax
./emacs/mq-mode.el
./vim/ale_linters/mq/mqkit_lsp.vim
./vim/ftdetect/mq.vim
./vim/ftplugin/mq.vim
./vim/ftplugin/mq_lsp.lua
./vim/syntax/mq.vim
./vscode/LICENSE
./vscode/README.md
./vscode/extension.js
./vscode/language-configuration.json
./vscode/package-lock.json
./vscode/package.json
./vscode/syntaxes/mq.tmLanguage.json
TXT
}

# passes, stops <message>: what a commit of all files does.
passes() { git add -A && git commit -q -m x; }
stops() {
    git add -A
    run git commit -m x
    [ "$status" -eq 1 ]
    [[ $output == *"$1"* ]] || { echo "$output"; return 1; }
}

@test "the local hooks of the page, under pre-commit, stop what does not pass" {
    export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_NOSYSTEM=1 GIT_AUTHOR_NAME=Ada GIT_AUTHOR_EMAIL=ada@example.org
    export GIT_COMMITTER_NAME=Ada GIT_COMMITTER_EMAIL=ada@example.org
    export PRE_COMMIT_HOME=$BATS_TEST_TMPDIR/cache PRE_COMMIT_COLOR=never PATH="$PREFIX/bin:$PATH"
    unset MQKIT
    mkdir study
    cd study
    sed -n '/^```yaml file=.pre-commit-config.yaml$/,/^```$/{//!p}' "$PREFIX/share/doc/mqkit/docs/ci.md" |
        sed "s#/usr/share#$PREFIX/share#" >.pre-commit-config.yaml
    [ "$(grep -c "entry: $PREFIX/share/mqkit/hooks/" .pre-commit-config.yaml)" -eq 2 ]
    pre-commit validate-config
    git init -q .
    pre-commit install >/dev/null
    printf 'dsl_version: 2\n\n$a\n  %%source origin\n  %%keywords k\n' | tee a.mq >p.projmq
    passes

    sed -i 's/origin/b/' a.mq
    stops "a.mq:4:3: error [missing-source-task] source task does not exist: b"
    cp p.projmq a.mq
    sed -i 's/origin/b/' p.projmq
    stops "p.projmq:4:3: error [missing-source-task] source task does not exist: b"
    # The first hook alone would have let the template pass.
    pre-commit run mqkit-lint
    cp a.mq p.projmq
    printf '$a\n%%keywords k\n' >a.mq
    stops "a.mq: not canonical"
    [ "$(git rev-list --count --all)" -eq 1 ]
}

@test "hooks run, filters and schemas are read" {
    export MQKIT=$PREFIX/bin/mqkit
    [ "$("$PREFIX/share/mqkit/hooks/mqkit-fmt-check" a.mq)" = "a.mq: left as it is; a rewrite would drop: comments" ]
    git init -q .
    git add a.mq
    "$PREFIX/share/mqkit/hooks/pre-commit"
    for filter in annotations code-quality sarif; do
        "$MQKIT" lint --format json a.mq | jq --arg root "$PWD" -f "$PREFIX/share/mqkit/ci/$filter.jq" >/dev/null
    done
    [ "$(jq -r .title "$PREFIX"/share/mqkit/schemas/*.json | wc -l)" -eq 2 ]
}
