;;; mq-mode-tests.el --- Faces, comments and indentation of mq-mode  -*- lexical-binding: t; -*-

;;; Code:

(require 'ert)
(require 'mq-mode)

(defun mq-test--face (text part)
  "The innermost face of the first character of PART in TEXT, as `mq-mode' colours it."
  (with-temp-buffer
    (insert text)
    (mq-mode)
    (font-lock-ensure)
    (goto-char (point-min))
    (search-forward part)
    (car (ensure-list (get-text-property (match-beginning 0) 'face)))))

(ert-deftest mq-test-faces ()
  (pcase-dolist
      (`(,text ,part ,face)
       '(("$opt\n" "opt" font-lock-function-name-face)
         ("$a\n  %keywords k\n" "%keywords" font-lock-keyword-face)
         ("$a\n  %nosuch k\n" "%nosuch" nil)
         ("$a\n  %program orca\n" "orca" font-lock-constant-face)
         ("$a\n  %control\n    totcore 8\n" "totcore" font-lock-type-face)
         ("$a\n  %args \"x y\" # c\n" "\"x y" font-lock-string-face)
         ("$a\n  %args don't # c\n" "# c" font-lock-comment-delimiter-face)
         ("$a\n  %args 'a # c'\n" "# c" font-lock-string-face)
         ("$a\n  %args a#c\n" "#c" nil)
         ("$a\n  %args k[key]\n" "[key]" mq-placeholder-face)
         ("# k[key]\n" "[key]" font-lock-comment-face)
         ("$a\n  %when\n    {{ b.c }} > 1\n" "{{ b" mq-snapshot-face)
         ("$a\n  %body << E\n# text\nE\n" "# text" mq-text-face)
         ("$a\n  %body << E\nE\n# no text\n" "# no" font-lock-comment-delimiter-face)
         ("$a\n  %body\n    # text\n  %args x\n" "# text" mq-text-face)
         ("@plot bar b\n  x a#c\n@end\n" "#c" font-lock-comment-delimiter-face)
         ("@plot bar b\n  x {{ a#c }}\n@end\n" "{{ a#c" mq-snapshot-face)
         ("@derive d\n  let a = \\#c\n@end\n" "#c" nil)
         ("a: it's # c\nb: don't\n" "# c" font-lock-comment-delimiter-face)
         ("a: |\n  # text\nb: 1\n" "# text" mq-text-face)
         ("&FRAGMENT text t\n# text\n" "# text" mq-text-face)
         ("&FRAGMENT control t\n# c\n" "# c" font-lock-comment-delimiter-face)))
    (ert-info ((format "%S in %S" part text))
      (should (equal (mq-test--face text part) face)))))

(defun mq-test--indent-again (text)
  "TEXT without its indentation, except that of the prelude and of heredocs, indented by `mq-mode'."
  (with-temp-buffer
    (insert text)
    (mq-mode)
    (syntax-propertize (point-max))
    (goto-char (point-min))
    (while (not (eobp))
      (unless (memq (get-text-property (point) 'mq-kind) '(text yaml table))
        (delete-horizontal-space))
      (forward-line))
    (syntax-propertize (point-max))
    (goto-char (point-min))
    (while (not (eobp))
      (unless (looking-at "$") (mq-indent-line))
      (forward-line))
    (buffer-string)))

(ert-deftest mq-test-indentation ()
  (should (equal (mq-test--indent-again "$a\n%source b\n      %control\ntotcore 8\n\n  gpus 1\n")
                 "$a\n  %source b\n  %control\n    totcore 8\n\n    gpus 1\n"))
  (should (equal (mq-test--indent-again "@plot bar b\nx c\naxis x:\nlabel \"d\"\nlegend:\nvisible true\ntitle t\n@end\n$a\n")
                 "@plot bar b\n  x c\n  axis x:\n    label \"d\"\n  legend:\n    visible true\n  title t\n@end\n$a\n")))

(ert-deftest mq-test-indentation-of-examples ()
  (let ((files (split-string (or (getenv "CANONICAL") "") "\n" t)))
    (skip-unless files)
    (should (> (length files) 30))
    (dolist (file files)
      (let ((text (with-temp-buffer (insert-file-contents file) (buffer-string))))
        (ert-info (file)
          (should (equal (mq-test--indent-again text) text)))))))

(ert-deftest mq-test-commenting ()
  (with-temp-buffer
    (insert "$a\n  %args x\n")
    (mq-mode)
    (comment-region (point-min) (point-max))
    (should (equal (buffer-string) "# $a\n#   %args x\n"))
    (uncomment-region (point-min) (point-max))
    (should (equal (buffer-string) "$a\n  %args x\n"))))

(ert-deftest mq-test-findings-are-links ()
  (with-temp-buffer
    (insert "a b.mq:12:3: error [missing-source-task] source task does not exist: c\n"
            "a.mq:4:1: warning [legacy-hash-include] #INCLUDE is legacy; use &INCLUDE\n")
    (compilation-mode)
    (compilation--ensure-parse (point-max))
    (goto-char (point-min))
    (let ((first (compilation--message->loc (get-text-property (point) 'compilation-message))))
      (should (equal (compilation--loc->line first) 12))
      (should (equal (caar (compilation--loc->file-struct first)) "a b.mq")))
    (should (equal (compilation--message->type (get-text-property (point) 'compilation-message)) 2))
    (forward-line)
    (should (equal (compilation--message->type (get-text-property (point) 'compilation-message)) 1))))

;;; mq-mode-tests.el ends here
