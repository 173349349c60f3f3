;;; mq-mode.el --- Major mode for task files of mqkit  -*- lexical-binding: t; -*-

;; Package-Requires: ((emacs "27.1"))
;; Keywords: languages, tools

;;; Commentary:

;; Colours, comments, indentation and checks (M-x compile) for .mq, .projmq, .mqlib and .mqfrag files.
;;
;;   (add-to-list 'load-path "<prefix>/share/mqkit/editors/emacs")
;;   (require 'mq-mode)
;;
;; Whether a quote quotes depends on the whole line: a kind of quote takes part only when the line holds an even number
;; of it.  Text below %body and %extrainput, heredocs and text fragments hold no comments.  So comments and strings are
;; found by a walk over the lines, which leaves syntax properties, and not by the syntax table.

;;; Code:

(require 'compile)
(require 'subr-x)

(defgroup mq nil
  "Task files of mqkit."
  :group 'languages)

(defcustom mq-program "mqkit"
  "The program that checks task files."
  :type 'string)

(defface mq-placeholder-face '((t :inherit font-lock-variable-name-face))
  "Face of [key].")
(defface mq-snapshot-face '((t :inherit font-lock-constant-face))
  "Face of {{ task.value }}.")
(defface mq-text-face '((t :inherit font-lock-doc-face))
  "Face of heredocs and of text below a directive.")

;;;; Lines

(defconst mq--behind "\\(?: \\|[ \t]*$\\|[ \t]+#\\)"
  "What ends a word of structure.")
(defconst mq--structure-regexp
  (concat "[ \t]*\\(?:%\\(?:[^ \t\n]\\|[ \t]+[^ \t\n#]\\)\\|\\$\\(?:[^ \t\n]\\|[ \t]+[^ \t\n#]\\)"
          "\\|@\\(?:plot\\|derive\\)" mq--behind "\\|&FRAGMENT" mq--behind "\\)"
          "\\|&INCLUDE +[^#\n]*\\.\\(?:mq\\|projmq\\)\\_>")
  "A line that ends the block of a directive.")
(defconst mq--between-regexp
  (concat "[ \t]*\\(?:@foreach\\??[ \t]+[A-Za-z_]\\|@end[ \t]*\\(?:$\\|[ \t]#\\)\\|&INCLUDE" mq--behind "\\)")
  "A line of a loop or an include: gone before blocks are read.")
(defconst mq--end-regexp "[ \t]*@end\\(?:[ \t]*$\\|[ \t]+#\\)"
  "The line that closes a plot, a derive or a loop.")
(defconst mq--heredoc-regexp
  (concat "[ \t]*%\\(?:keywords\\|body\\|extrainputs?\\)[ \t]+<<[ \t]*"
          "\\([^ \t\n#][^ \t\n]*\\(?:[ \t]+[^ \t\n#][^ \t\n]*\\)*\\)?")
  "The line that opens a heredoc; its group is the terminator.")
(defconst mq--text-regexp "[ \t]*%\\(?:body\\|extrainputs?\\)\\(?:[ \t]*$\\|[ \t]+#\\)"
  "A directive whose text stands in the lines below.")
(defconst mq--fragment-regexp "[ \t]*&FRAGMENT +\\([A-Za-z_-]+\\)"
  "The head of a fragment; its group is the kind.")

(defun mq--quote-kinds (text)
  "Return the quotes that take part on a line of TEXT: those of even number.
One behind a backslash does not count."
  (let ((double 0) (single 0) (at 0))
    (while (< at (length text))
      (pcase (aref text at)
        (?\\ (setq at (1+ at)))
        (?\" (setq double (1+ double)))
        (?' (setq single (1+ single))))
      (setq at (1+ at)))
    (append (and (> double 0) (= 0 (% double 2)) '(?\"))
            (and (> single 0) (= 0 (% single 2)) '(?')))))

(defun mq--walk (text kinds place-of-comment &optional statement)
  "Walk through TEXT, where the quotes KINDS quote, up to its comment.
PLACE-OF-COMMENT tells whether a # outside quotes, by its index, begins one.
With STATEMENT, {{ }} hides marks as well, and a backslash protects outside
quotes, but not inside single ones.
Return (COMMENT . STRINGS): the index of the comment or nil, and pairs of begin
and end."
  (let ((at 0) (size (length text)) quote begin strings comment (snapshots 0))
    (while (and (not comment) (< at size))
      (let ((char (aref text at)))
        (cond
         ((and (eq char ?\\) (if statement (not (eq quote ?')) quote) (< (1+ at) size))
          (setq at (1+ at)))
         (quote
          (when (eq char quote)
            (push (cons begin (1+ at)) strings)
            (setq quote nil)))
         ((memq char kinds)
          (setq quote char begin at))
         ((and statement (eq char ?{) (< (1+ at) size) (eq (aref text (1+ at)) ?{))
          (setq snapshots (1+ snapshots) at (1+ at)))
         ((and statement (> snapshots 0) (eq char ?}) (< (1+ at) size) (eq (aref text (1+ at)) ?}))
          (setq snapshots (1- snapshots) at (1+ at)))
         ((and (eq char ?#) (= snapshots 0) (funcall place-of-comment at))
          (setq comment at))))
      (setq at (1+ at)))
    (when quote
      (push (cons begin size) strings))
    (cons comment strings)))

(defun mq--begins-comment-p (text at)
  "Whether a # at AT of TEXT begins a comment: at the start, or behind a blank."
  (or (= at 0) (memq (aref text (1- at)) '(?\s ?\t ?\r ?\f ?\v))))

(defun mq--line (kind text)
  "Return what `mq--walk' does for a line of KIND with TEXT."
  (pcase kind
    ('text '(nil))
    ('statement (mq--walk text '(?\" ?') #'always t))
    ('yaml (mq--yaml-walk text))
    (_ (mq--walk text (mq--quote-kinds text) (lambda (at) (mq--begins-comment-p text at))))))

(defun mq--yaml-walk (text)
  "Return what `mq--walk' does for a YAML line of TEXT.
A quote quotes only at the start of a value."
  (let ((at 0) (size (length text)) quote begin strings comment (before ?:))
    (while (and (not comment) (< at size))
      (let ((char (aref text at)))
        (cond
         (quote
          (cond ((and (eq quote ?\") (eq char ?\\)) (setq at (1+ at)))
                ((eq char quote) (push (cons begin (1+ at)) strings) (setq quote nil))))
         ((and (memq char '(?\" ?')) (memq before '(?: ?- ?\[ ?{ ?,)))
          (setq quote char begin at))
         ((and (eq char ?#) (mq--begins-comment-p text at))
          (setq comment at)))
        (unless (memq char '(?\s ?\t))
          (setq before char)))
      (setq at (1+ at)))
    (cons comment strings)))

(defun mq--kinds-of-lines ()
  "Return a list of (KIND . BEGIN) for every line of the buffer, in reverse.
KIND is `line' (of a task), `statement', `text', `yaml', `table' (of define or
matrix) or `fault'."
  (let ((state 'prelude) (terminator nil) (scalar nil) result)
    (goto-char (point-min))
    (while (not (eobp))
      (let ((begin (point)) (kind 'line))
        (cond
         ;; A heredoc ends at its terminator alone.
         (terminator
          (setq kind 'text)
          (when (looking-at (concat "[ \t]*" (regexp-quote terminator) "[ \t\r]*$"))
            (setq terminator nil state 'body))
          (when (looking-at mq--between-regexp)
            (unless (looking-at "[ \t]*&")
              (setq kind 'line))))
         ;; A plot or derive at the margin ends at @end alone.
         ((eq state 'capture)
          (setq kind 'statement)
          (cond ((looking-at mq--end-regexp) (setq kind 'line state 'body))
                ((looking-at "[ \t]*@end[^ \t\r\n]") (setq kind 'fault))))
         ((looking-at mq--fragment-regexp)
          (setq state (if (member (downcase (match-string-no-properties 1)) '("text" "body" "extrainput"))
                          'text-fragment 'body)))
         ((eq state 'text-fragment)
          (setq kind (if (looking-at "[ \t]*&INCLUDE\\_>") 'line 'text)))
         ((looking-at (concat "[ \t]*@\\(?:plot\\|derive\\)" mq--behind))
          (setq state 'capture))
         ((looking-at mq--heredoc-regexp)
          (setq terminator (or (match-string-no-properties 1) "EOF") state 'body))
         ((looking-at mq--text-regexp)
          (setq state 'text))
         ((looking-at (concat "[ \t]*%plot" mq--behind))
          (setq state 'plot))
         ((looking-at mq--structure-regexp)
          (setq state 'body))
         ((looking-at mq--between-regexp)
          (when (and (eq state 'prelude) (looking-at "[ \t]*@"))
            (setq state 'body)))
         ((memq state '(text plot))
          (setq kind (if (eq state 'text) 'text 'statement)))
         ((or (eq state 'prelude) (and (eq state 'table) (looking-at "[^ \t\r\n#]")))
          (if (looking-at "\\(?:define\\|matrix\\):")
              (setq state 'table kind 'table)
            (setq state 'prelude kind 'yaml)))
         ((eq state 'table)
          (setq kind 'table)))
        ;; The lines of a YAML block scalar are further in than its key.
        (when scalar
          (if (and (eq kind 'yaml) (or (looking-at "[ \t]*$") (> (current-indentation) scalar)))
              (setq kind 'text)
            (setq scalar nil)))
        (when (and (eq kind 'yaml) (looking-at "\\([ \t]*\\)[^ \t#\n].*:[ \t]+[|>][-+0-9]*[ \t]*\\(?:$\\|#\\)"))
          (setq scalar (current-indentation)))
        (push (cons kind begin) result))
      (forward-line))
    result))

(defvar-local mq--lines nil
  "The state of the text and the kinds of its lines.")

(defun mq--propertize (begin end)
  "Mark comments and strings from BEGIN to END for the syntax of Emacs.
What a line is depends on those above it, so the whole buffer is walked, once
for each state of the text."
  (save-excursion
    (unless (equal (car mq--lines) (buffer-chars-modified-tick))
      (setq mq--lines (cons (buffer-chars-modified-tick) (mq--kinds-of-lines))))
    (pcase-dolist (`(,kind . ,start) (cdr mq--lines))
      (goto-char start)
      (when (and (<= start end) (>= (line-end-position) begin))
        (mq--propertize-line kind start (line-end-position))))))

(defun mq--propertize-line (kind start end)
  "Mark the comment and the strings of the line of KIND from START to END."
  (remove-text-properties start (min (1+ end) (point-max)) '(syntax-table nil mq-kind nil))
  (put-text-property start (min (1+ end) (point-max)) 'mq-kind kind)
  (unless (eq kind 'fault)
    (pcase-let ((`(,comment . ,strings) (mq--line kind (buffer-substring-no-properties start end))))
      (when comment
        (put-text-property (+ start comment) (+ start comment 1) 'syntax-table '(11))
        (when (< end (point-max))
          (put-text-property end (1+ end) 'syntax-table '(12))))
      (pcase-dolist (`(,from . ,to) strings)
        (put-text-property (+ start from) (+ start from 1) 'syntax-table '(15))
        (put-text-property (+ start to -1) (+ start to) 'syntax-table '(15))))))

;;;; Colours

(defconst mq--words
  '((directives "source" "program" "interface" "batch" "control" "when" "keywords" "extrainput" "extrainputs"
                "template" "param" "args" "runner" "body" "preprocess" "process" "mod" "meta" "plot")
    (programs "gaussian" "orca" "gamess" "xtb" "mrcc" "maple" "amesp" "bdf" "mopac" "fcclasses" "other" "script")
    (keys "totcore" "totmem" "gpus" "totgpu" "gpu_type" "gputype" "gpu_mem" "gpumem" "finalgeom" "guess_converter"
          "guessconverter" "guess" "waitfreq" "alert" "localfirst" "externalinp" "verbosity" "geom" "lane" "lanes"
          "collect" "cluster" "strucid" "charge" "spin" "basisset" "completed" "defined")
    (statements "from" "axis" "legend" "title" "output" "format" "terminal" "size" "style" "theme" "missing" "x" "y"
                "intensity" "z" "yerr" "yerror" "error" "series" "threshold" "relative" "sort" "mode" "broaden" "range"
                "bins" "density" "limit" "diagonal" "fit" "metrics" "point" "column" "system" "orbitals" "orbital"
                "spin" "roots" "root" "states" "state" "arrow" "transition" "unit" "label" "value" "scale" "position"
                "visible" "order" "let" "require" "assert" "report" "emit" "formula" "profile" "bind" "join" "where"
                "select" "group" "aggregate" "reduce")
    (constants "origin" "restart" "provider" "consume" "allothers" "true" "false"))
  "The words of the language, by what they are.")

(defun mq--word-regexp (list)
  "A regular expression for the words of LIST, as one group."
  (concat "\\(" (regexp-opt (cdr (assq list mq--words))) "\\)\\_>"))

(defun mq--match-in (kinds regexp &optional fold)
  "A font-lock matcher for REGEXP on lines of KINDS, outside comments.
With FOLD, in any case."
  (lambda (limit)
    (let ((case-fold-search fold) found)
      (while (and (not found) (re-search-forward regexp limit t))
        (setq found (and (memq (get-text-property (match-beginning 0) 'mq-kind) kinds)
                         (not (eq (get-text-property (match-beginning 0) 'face) 'font-lock-comment-face)))))
      found)))

(defconst mq-font-lock-keywords
  `((,(mq--match-in '(text) "^.+$") 0 'mq-text-face)
    (,(mq--match-in '(line statement text) "\\[[A-Za-z0-9_.-]+\\]") 0 'mq-placeholder-face prepend)
    (,(mq--match-in '(line statement) "{{.*?}}") 0 'mq-snapshot-face)
    (,(mq--match-in '(line) (concat "^[ \t]*\\(%" (mq--word-regexp 'directives) "\\)")) 1 font-lock-keyword-face)
    (,(mq--match-in '(line) (concat "%program[ \t]+" (mq--word-regexp 'programs)) t) 1 font-lock-constant-face)
    (,(mq--match-in '(line) "^[ \t]*\\$[ \t]*\\([^#\n]+\\)") 1 font-lock-function-name-face append)
    (,(mq--match-in '(line) "^[ \t]*\\(@\\(?:plot\\|derive\\|foreach\\??\\|end\\)\\)\\(?:[ \t]+\\([^ \t\n#]+\\)\\)?")
     (1 font-lock-keyword-face) (2 font-lock-type-face nil t))
    (,(mq--match-in '(line) "^[ \t]*\\(&\\(?:INCLUDE\\|FRAGMENT\\)\\)\\_>") 1 font-lock-preprocessor-face)
    (,(mq--match-in '(table) "^\\(?:define\\|matrix\\):") . font-lock-preprocessor-face)
    (,(mq--match-in '(line yaml table) "^[ \t]*\\(?:- +\\)?\\([A-Za-z_][A-Za-z0-9_.-]*\\):\\(?:[ \t]\\|$\\)")
     1 font-lock-type-face)
    (,(mq--match-in '(line) (concat "^[ \t]+" (mq--word-regexp 'keys))) 1 font-lock-type-face)
    (,(mq--match-in '(statement) (concat "^[ \t]*" (mq--word-regexp 'statements)) t) 1 font-lock-builtin-face)
    (,(mq--match-in '(line) (concat "[ \t]" (mq--word-regexp 'constants))) 1 font-lock-constant-face)
    (,(mq--match-in '(fault) "^.+$") . font-lock-warning-face))
  "What is coloured in task files, besides comments and strings.")

;;;; Indentation

(defconst mq--below-regexp "[ \t]*\\(?:label\\|unit\\|scale\\|position\\|visible\\|order\\|report\\)\\_>"
  "A line that stands below one that ends in a colon.")

(defun mq-indent-line ()
  "Indent the line: tasks at the margin, directives two blanks in, blocks four.
What is below a colon is two further in.  Text and the prelude stay as they are."
  (interactive)
  (unless (memq (get-text-property (line-beginning-position) 'mq-kind) '(text yaml table))
    (let ((behind (- (current-column) (current-indentation))))
      (indent-line-to (mq--indentation))
      (when (> behind 0)
        (move-to-column (+ (current-indentation) behind))))))

(defun mq--indentation ()
  "The column at which the line begins."
  (save-excursion
    (beginning-of-line)
    (let ((below (looking-at mq--below-regexp)))
      (cond
       ((looking-at "[ \t]*[$@]") 0)
       ((looking-at "[ \t]*%") 2)
       ((not (mq--previous-line)) 0)
       ((looking-at "[ \t]*\\(?:\\$\\|@plot\\_>\\|@derive\\_>\\)") 2)
       ((looking-at "[ \t]*%\\(?:plot\\_>\\|[a-z]+[ \t]*\\(?:#.*\\)?$\\)\\|.*:[ \t]*$") (+ (current-indentation) 2))
       ((looking-at mq--end-regexp) 0)
       (t (unless below
            (while (and (looking-at mq--below-regexp) (mq--previous-line))))
          (current-indentation))))))

(defun mq--previous-line ()
  "Move to the start of the line above that is not blank, if there is one."
  (and (re-search-backward "^[ \t]*[^ \t\n]" nil t)
       (progn (beginning-of-line) t)))

;;;; Checks

(add-to-list 'compilation-error-regexp-alist-alist
             '(mqkit "^\\([^:\n]+\\):\\([0-9]+\\):\\([0-9]+\\): \\(?:error\\|\\(warning\\)\\) \\[" 1 2 3 (4)))
(add-to-list 'compilation-error-regexp-alist 'mqkit)

(defvar mq-mode-syntax-table
  (let ((table (make-syntax-table)))
    (dolist (char '(?\" ?' ?# ?$ ?% ?& ?@))
      (modify-syntax-entry char "." table))
    (modify-syntax-entry ?_ "_" table)
    (modify-syntax-entry ?\\ "." table)
    (modify-syntax-entry ?\n " " table)
    table)
  "No quotes and no comments: `mq--propertize' marks them.")

;;;###autoload
(define-derived-mode mq-mode prog-mode "mq"
  "Major mode for task files of mqkit."
  (setq-local comment-start "# ")
  (setq-local comment-end "")
  (setq-local comment-start-skip "#+[ \t]*")
  (setq-local parse-sexp-lookup-properties t)
  (setq-local syntax-propertize-function #'mq--propertize)
  (setq-local font-lock-defaults '(mq-font-lock-keywords))
  (setq-local indent-line-function #'mq-indent-line)
  (setq-local indent-tabs-mode nil)
  (when buffer-file-name
    (setq-local compile-command
                (concat mq-program " lint " (shell-quote-argument (file-name-nondirectory buffer-file-name))))))

;; M-x eglot asks the language server.
(defvar eglot-server-programs)
(with-eval-after-load 'eglot
  (add-to-list 'eglot-server-programs '(mq-mode . ("mqkit-lsp"))))

;;;###autoload
(add-to-list 'auto-mode-alist '("\\.\\(?:mq\\|projmq\\|mqlib\\|mqfrag\\)\\'" . mq-mode))

(provide 'mq-mode)
;;; mq-mode.el ends here
